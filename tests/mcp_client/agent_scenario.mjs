// An agent's task through `zeblo mcp` and the official MCP TypeScript SDK
// client, on our GTK 3 application in a desktop session: open a dialog from
// the menu bar, fill two fields by their labels, tick a box, choose an item
// of a popover, press OK, and read the effect in the application.
//   node agent_scenario.mjs ZEBLO_TOOL TESTAPP
import assert from "node:assert/strict";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";

const [tool, testapp] = process.argv.slice(2);
assert.ok(tool && testapp, "usage: node agent_scenario.mjs ZEBLO_TOOL TESTAPP");
const app = "zeblo-testapp";

const client = new Client({ name: "zeblo-agent", version: "1.0.0" });
// The server drives the session this script runs in: its whole environment.
await client.connect(new StdioClientTransport({ command: tool, args: ["mcp"], env: process.env, stderr: "inherit" }));

const call = async (name, args) => {
  const result = await client.callTool({ name, arguments: args });
  assert.equal(result.isError, false, `${name} ${JSON.stringify(args)}: ${JSON.stringify(result.content)}`);
  return result.content[0].text;
};
// The reference on the outline line of the element named `name`.
const refOf = (outline, name) => {
  const line = outline.split("\n").find((l) => l.includes(`"${name}"`) && l.includes("["));
  assert.ok(line, `no "${name}" in\n${outline}`);
  return line.slice(line.lastIndexOf("[") + 1, line.lastIndexOf("]"));
};

await call("launch_app", { app_name: testapp });
assert.equal(await call("wait_for_window", { app_name: app, window_name: "Zeblo Test", timeout: 20000 }), "true");
await call("focus_app", { app_name: app, window_name: "Zeblo Test", timeout: 5000 });

// The menu bar's File menu, then its "Open Dialog" item.
const tree = await call("get_ui_tree", { app_name: app, window_name: "Zeblo Test" });
const file = await call("act_on_element", { ref: refOf(tree, "File"), action: "open_menu" });
await call("act_on_element", { ref: refOf(file, "Open Dialog"), action: "press" });
await call("wait_for_element", { app_name: app, window_name: "Test Dialog", role: "button", name: "OK", timeout: 10000 });

// The form, by the labels a user reads beside its fields.
const dialog = await call("get_ui_tree", { app_name: app, window_name: "Test Dialog" });
const field = async (label) =>
  refOf(await call("find_elements", { app_name: app, window_name: "Test Dialog", role: "textfield", name: label }), label);
await call("act_on_element", { ref: await field("Full name:"), action: "set_value", value: "Ada" });
await call("act_on_element", { ref: await field("Email:"), action: "set_value", value: "ada@example.org" });
await call("act_on_element", { ref: refOf(dialog, "Subscribe"), action: "check" });
const sizes = await call("act_on_element", { ref: refOf(dialog, "Size"), action: "open_menu" });
await call("act_on_element", { ref: refOf(sizes, "Large"), action: "press" });
await call("act_on_element", { ref: refOf(dialog, "OK"), action: "press" });

// The application shows what was filled in.
const status = await call("wait_for_element", {
  app_name: app, window_name: "Zeblo Test", text: "form Ada", timeout: 5000 });
assert.match(status, /form Ada <ada@example\.org> subscribe 1 size Large/);

// A stale reference fails with its kind and case, and acts on nothing.
await call("act_on_element", { ref: refOf(dialog, "Dismiss"), action: "press" });
const stale = await client.callTool({ name: "act_on_element", arguments: { ref: refOf(dialog, "OK"), action: "press" } });
assert.equal(stale.isError, true);
assert.equal(JSON.parse(stale.content[1].text).kind, "stale");

await call("press_keys", { app_name: app, keys: "ctrl+q" });
await client.close();
console.log("MCP agent scenario passed");

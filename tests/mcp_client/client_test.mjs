// `zeblo mcp` on the example desktop, driven by the official MCP TypeScript
// SDK client over standard input and output:
//   node client_test.mjs ZEBLO_TOOL EXAMPLE_DESKTOP
import assert from "node:assert/strict";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import { LATEST_PROTOCOL_VERSION } from "@modelcontextprotocol/sdk/types.js";

const [tool, desktop] = process.argv.slice(2);
assert.ok(tool && desktop, "usage: node client_test.mjs ZEBLO_TOOL EXAMPLE_DESKTOP");

const transport = new StdioClientTransport({ command: tool, args: ["--simulate", desktop, "mcp"], stderr: "inherit" });
const client = new Client({ name: "zeblo-test", version: "1.0.0" });
await client.connect(transport);

assert.equal(client.getServerVersion().name, "zeblo");
assert.deepEqual(client.getServerCapabilities().tools, { listChanged: false });
assert.match(client.getInstructions(), /get_running_apps/);

const { tools } = await client.listTools();
assert.equal(tools.length, 30);  // the 24 operations and the 6 element tools
const byName = Object.fromEntries(tools.map((t) => [t.name, t]));
assert.equal(byName.get_element.annotations.readOnlyHint, true);
assert.equal(byName.get_window_text.annotations.readOnlyHint, true);
assert.equal(byName.menu_click.annotations.destructiveHint, true);
assert.deepEqual(byName.send_global_keystroke.inputSchema.properties.key_codes.items,
                 { type: "integer", minimum: 0, maximum: 65535 });

const text = (result) => result.content[0].text;
let result = await client.callTool({ name: "get_running_apps", arguments: {} });
assert.equal(result.isError, false);
assert.deepEqual(JSON.parse(text(result)), ["Finder", "Quick Notes", "Mail", "Sync Helper"]);

result = await client.callTool({ name: "get_app_menus", arguments: { app_name: "Quick Notes" } });
assert.deepEqual(JSON.parse(text(result)).menus.map((m) => m.title), ["Quick Notes", "File", "Edit", "View"]);

result = await client.callTool({ name: "menu_click", arguments: { app_name: "Quick Notes", menu_path: ["File", "Save"] } });
assert.deepEqual([text(result), result.isError], ["true", false]);

result = await client.callTool({ name: "click_button", arguments: { app_name: "Mail", button_name: "Forward" } });
assert.deepEqual([text(result), result.isError], ["Button 'Forward' not found in window", true]);

result = await client.callTool({ name: "get_window_text", arguments: { app_name: "Mail", window_name: "inbox" } });
assert.ok(JSON.parse(text(result)).includes("[AXStaticText] Lunch on Friday?"));

result = await client.callTool({ name: "paste_text", arguments: { text: "caf\u00e9 \u2713" } });
assert.equal(text(result), "true");

result = await client.callTool({ name: "wait_for_window",
                                 arguments: { app_name: "Quick Notes", window_name: "Export Complete", timeout: 1000 } });
assert.equal(text(result), "true");

result = await client.callTool({ name: "type_text", arguments: { text: 42 } });
assert.deepEqual([text(result), result.isError], ["Invalid arguments: 'text' must be a string", true]);

await assert.rejects(client.callTool({ name: "no_such_tool", arguments: {} }), /Unknown tool: no_such_tool/);
await client.ping();

// The server is still there after all of it.
result = await client.callTool({ name: "get_frontmost_info", arguments: {} });
assert.deepEqual(JSON.parse(text(result)), { app: "Quick Notes", window: "Groceries \u2014 Edited" });

await client.close();
console.log(`MCP client test passed (protocol ${LATEST_PROTOCOL_VERSION}, ${tools.length} tools)`);

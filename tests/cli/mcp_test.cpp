// The MCP server's protocol layer, driven message by message on simulated
// desktops: negotiation, malformed messages, the tool list and its hints,
// tool results and failures, argument checking.
#include "capi/export_table.h"
#include "capi/plus/plus_export_table.h"
#include "mcp_server.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using mcp::Json;

class Mcp : public SimTest {
protected:
    // Sends one message; the answer parsed (null when there is none), and no
    // handle left alive.
    Json send(const std::string& line) {
        const auto answer = server.handle(line);
        EXPECT_EQ(desk().liveHandles(), 0) << line;
        return answer ? Json::parse(*answer) : Json();
    }
    Json request(const std::string& method, const Json& params = nullptr, const Json& id = 1) {
        Json message = {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}};
        if (!params.is_null()) message["params"] = params;
        return send(message.dump());
    }
    // A tools/call's result: {text, isError}.
    std::pair<std::string, bool> call(const std::string& tool, const Json& arguments = Json::object()) {
        const Json answer = request("tools/call", {{"name", tool}, {"arguments", arguments}});
        EXPECT_TRUE(answer.contains("result")) << answer.dump();
        const Json& result = answer["result"];
        return {result["content"][0]["text"].get<std::string>(), result["isError"].get<bool>()};
    }
    int errorCode(const Json& answer) { return answer["error"]["code"].get<int>(); }

    mcp::Server server;
};

TEST_F(Mcp, NegotiationPingAndNotifications) {
    load("{}");
    for (const char* version : {"2025-11-25", "2025-06-18", "2025-03-26", "2024-11-05"}) {
        const Json answer = request("initialize", {{"protocolVersion", version}, {"capabilities", Json::object()},
                                                   {"clientInfo", {{"name", "t"}, {"version", "1"}}}});
        EXPECT_EQ(answer["result"]["protocolVersion"], version);
        EXPECT_EQ(answer["result"]["capabilities"], Json::parse(R"({"tools":{"listChanged":false}})"));
    }
    // A revision the server does not speak: it answers with its newest.
    EXPECT_EQ(request("initialize", {{"protocolVersion", "2099-01-01"}})["result"]["protocolVersion"], "2025-11-25");
    EXPECT_EQ(errorCode(request("initialize", Json::object())), -32602);
    EXPECT_EQ(request("ping", nullptr, "p-1"), Json::parse(R"({"jsonrpc":"2.0","id":"p-1","result":{}})"));
    // Notifications, responses and blank lines are never answered.
    EXPECT_TRUE(send(R"({"jsonrpc":"2.0","method":"notifications/initialized"})").is_null());
    EXPECT_TRUE(send(R"({"jsonrpc":"2.0","method":"tools/call","params":{"name":"menu_click"}})").is_null());
    EXPECT_TRUE(send(R"({"jsonrpc":"2.0","id":4,"result":{}})").is_null());
    EXPECT_TRUE(send("  \r").is_null());
}

TEST_F(Mcp, MalformedMessagesGetJsonRpcErrors) {
    load("{}");
    EXPECT_EQ(send("{\"jsonrpc\":"), Json::parse(R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"Parse error"}})"));
    EXPECT_EQ(errorCode(send("[1,2]")), -32600);
    EXPECT_EQ(errorCode(send(R"({"jsonrpc":"1.0","id":1,"method":"ping"})")), -32600);
    const Json badId = send(R"({"jsonrpc":"2.0","id":{"a":1},"method":"ping"})");
    EXPECT_EQ(errorCode(badId), -32600);
    EXPECT_TRUE(badId["id"].is_null());
    EXPECT_EQ(errorCode(send(R"({"jsonrpc":"2.0","id":1,"method":7})")), -32600);
    EXPECT_EQ(errorCode(request("resources/list")), -32601);
    EXPECT_EQ(errorCode(request("tools/list", Json::array())), -32602);
    EXPECT_EQ(errorCode(request("tools/call", {{"name", "no_such_tool"}})), -32602);
    EXPECT_EQ(errorCode(request("tools/call", {{"arguments", Json::object()}})), -32602);
}

TEST_F(Mcp, ToolListNamesSchemasAndHints) {
    load("{}");
    const Json tools = request("tools/list")["result"]["tools"];
    ASSERT_EQ(tools.size(), 30u);  // the 24 operations and the 6 element tools
    std::set<std::string> readOnly, idempotentActs;
    for (const Json& tool : tools) {
        const std::string name = tool["name"];
        EXPECT_EQ(tool["inputSchema"]["type"], "object") << name;
        EXPECT_EQ(tool["inputSchema"]["additionalProperties"], false) << name;
        EXPECT_FALSE(tool["description"].get<std::string>().empty()) << name;
        const Json& hints = tool["annotations"];
        if (hints["readOnlyHint"] == true) {
            readOnly.insert(name);
            EXPECT_FALSE(hints.contains("destructiveHint")) << name;
            EXPECT_EQ(hints["idempotentHint"], true) << name;
        } else {
            EXPECT_EQ(hints["destructiveHint"], true) << name;
            if (hints["idempotentHint"] == true) idempotentActs.insert(name);
        }
    }
    // A tool for each export but zeblo_free_string, its arguments the
    // export's parameters in order.
    std::size_t t = 0;
    for (const capi::Export& row : capi::exportTable()) {
        if (row.failure == capi::Failure::none) continue;
        ASSERT_LT(t, tools.size());
        const Json& tool = tools[t++];
        EXPECT_EQ("zeblo_" + tool["name"].get<std::string>(), row.name);
        std::vector<std::string> given, wanted;
        for (const auto& property : tool["inputSchema"]["properties"].items()) given.push_back(property.key());
        for (const capi::Param& p : row.params) {
            std::string snake;
            for (const char c : p.name)
                snake += c >= 'A' && c <= 'Z' ? std::string("_") + char(c - 'A' + 'a') : std::string(1, c);
            wanted.push_back(snake);
        }
        EXPECT_EQ(given, wanted) << row.name;
    }
    // Every tool calls an export of either table and is read-only when it
    // only reads; every export a host needs an answer from has one.
    std::set<std::string_view> called;
    for (const mcp::Tool& tool : mcp::allTools()) {
        const capi::Export* row = capi::plus::findAnyExport(tool.exportName);
        ASSERT_NE(row, nullptr) << tool.name;
        EXPECT_EQ(tool.readOnly, row->effect == capi::Effect::reads) << tool.name;
        called.insert(row->name);
    }
    for (const auto* table : {&capi::exportTable(), &capi::plus::plusExportTable()}) {
        for (const capi::Export& row : *table) {
            const bool hostOnly = row.name == "zeblo_free_string" || row.name == "zeblo_last_failure";
            EXPECT_EQ(called.count(row.name), hostOnly ? 0u : 1u) << row.name;
        }
    }
    EXPECT_EQ(readOnly, (std::set<std::string>{"get_app_menus", "menu_item_exists", "menu_item_enabled",
                                               "get_window_buttons", "get_window_text", "get_frontmost_info",
                                               "get_running_apps", "is_in_text_field", "window_exists",
                                               "get_window_titles", "wait_for_window", "get_ui_tree",
                                               "find_elements", "get_element", "wait_for_element"}));
    // Repeating these changes nothing more; typing, clicking or closing twice does.
    EXPECT_EQ(idempotentActs, (std::set<std::string>{"set_checkbox_value", "get_popup_menu_items", "focus_app"}));
    const Json& click = tools[1];
    ASSERT_EQ(click["name"], "menu_click");
    EXPECT_EQ(click["inputSchema"]["required"], Json::array({"menu_path"}));
    EXPECT_EQ(click["inputSchema"]["properties"]["menu_path"]["items"]["type"], "string");
    EXPECT_EQ(click["inputSchema"]["properties"]["app_name"]["type"], "string");
    const Json& keystroke = tools[4];
    ASSERT_EQ(keystroke["name"], "send_keystroke");
    const Json& modifiers = keystroke["inputSchema"]["properties"]["modifiers"];
    EXPECT_EQ(modifiers["type"], "integer");
    EXPECT_EQ(modifiers["minimum"], 0);
    EXPECT_EQ(modifiers["maximum"], 15);
    EXPECT_EQ(modifiers["default"], 0);
    EXPECT_FALSE(modifiers.contains("items"));
}

TEST_F(Mcp, ResultsFailuresAndAnswers) {
    loadFile("examples/desktop.json");
    EXPECT_EQ(call("get_running_apps"), std::make_pair(std::string(R"(["Finder","Quick Notes","Mail","Sync Helper"])"), false));
    EXPECT_EQ(call("get_window_titles", {{"app_name", "notes"}}).first, "[\"Groceries \xe2\x80\x94 Edited\",\"Settings\"]");
    // An error object becomes a failure with its text.
    EXPECT_EQ(call("get_window_text", {{"app_name", "Nowhere"}}),
              std::make_pair(std::string("Application 'Nowhere' not found. Check if the app is running."), true));
    // A false that the library logs a reason for: that reason.
    EXPECT_EQ(call("click_button", {{"app_name", "Quick Notes"}, {"button_name", "Publish"}}),
              std::make_pair(std::string("Button 'Publish' not found in window"), true));
    EXPECT_EQ(call("menu_click", {{"app_name", "Quick Notes"}, {"menu_path", {"File", "Revert to Saved"}}}),
              std::make_pair(std::string("The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.MenuError error 5.) "
                                        "\xe2\x80\x94 the item refused to be chosen"),
                            true));
    EXPECT_EQ(call("send_keystroke", {{"key_char", "Ctrl"}}), std::make_pair(std::string("Invalid key character: Ctrl"), true));
    // A quiet function's false is an answer.
    EXPECT_EQ(call("window_exists", {{"app_name", "Mail"}, {"window_name", "Drafts"}}), std::make_pair(std::string("false"), false));
    EXPECT_EQ(call("menu_item_exists", {{"app_name", "Quick Notes"}, {"menu_path", {"File", "Save"}}}),
              std::make_pair(std::string("true"), false));
    // Acting tools reach the desktop with their arguments.
    EXPECT_EQ(call("send_global_keystroke", {{"key_codes", {55, 9}}, {"modifier_flags", 0x100000}}).first, "true");
    const auto keys = traceOf("key");
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_EQ(keys[1]["key"], 9);
    EXPECT_EQ(keys[1]["flags"], 0x100000);
    EXPECT_EQ(call("wait_for_window", {{"app_name", "Quick Notes"}, {"window_name", "export complete"}, {"timeout", 1000}}).first,
              "true");
    EXPECT_EQ(desk().clock(), 0.25);
    // The spelling check box (on) toggles off when pressed.
    EXPECT_EQ(call("click_checkbox", {{"app_name", "Quick Notes"}, {"checkbox_name", "spelling"}}).first, "true");
    EXPECT_EQ(std::get<std::int64_t>(*desk().node("spell-check")->findAttr("AXValue")), 0);
}

TEST_F(Mcp, ArgumentsAreCheckedAgainstTheSchema) {
    loadFile("examples/desktop.json");
    const std::pair<const char*, Json> bad[] = {
        {"missing argument 'menu_path' (array of strings)", Json::object()},
        {"'menu_path' must be an array of strings", {{"menu_path", {"File", 3}}}},
        {"unknown argument 'appName' for menu_click", {{"appName", "Mail"}, {"menu_path", {"File"}}}},
        {"'app_name' must be a string", {{"app_name", 5}, {"menu_path", {"File"}}}},
    };
    for (const auto& [message, arguments] : bad) {
        EXPECT_EQ(call("menu_click", arguments), std::make_pair("Invalid arguments: " + std::string(message), true));
    }
    EXPECT_EQ(call("send_keystroke", {{"key_char", "a"}, {"modifiers", 16}}).first,
              "Invalid arguments: 'modifiers' must be from 0 to 15");
    EXPECT_EQ(call("set_checkbox_value", {{"checkbox_name", "spelling"}, {"value", 1.5}}).first,
              "Invalid arguments: 'value' must be an integer");
    EXPECT_EQ(call("close_window", {{"window_name", "settings"}, {"retry_timeout", 600001}}).second, true);
    EXPECT_EQ(call("wait_for_window", {{"window_name", "settings"}}).first,
              "Invalid arguments: missing argument 'timeout' (integer)");
    EXPECT_TRUE(traceOf("action").empty());  // nothing reached the desktop
    // Null is the same as leaving an optional argument out.
    EXPECT_EQ(call("get_window_buttons", {{"app_name", nullptr}, {"window_name", nullptr}}).first, R"(["Save","Share…"])");
}

}  // namespace
}  // namespace zeblo::testing

namespace zeblo::testing {
namespace {

class McpElements : public SimTest {
protected:
    Json call(const std::string& tool, const Json& arguments) {
        const auto answer = server.handle(
            Json{{"jsonrpc", "2.0"}, {"id", 1}, {"method", "tools/call"}, {"params", {{"name", tool}, {"arguments", arguments}}}}
                .dump());
        EXPECT_EQ(desk().liveHandles(), 0) << tool;
        return Json::parse(answer.value_or("{}"))["result"];
    }
    mcp::Server server;
};

TEST_F(McpElements, OutlinesWithReferencesCapsAndTheKindOfEveryFailure) {
    loadFile("examples/desktop.json");
    const std::string outline =
        call("get_ui_tree", {{"app_name", "Quick Notes"}, {"window_name", "Settings"}})["content"][0]["text"];
    EXPECT_NE(outline.find("\n  - checkbox \"Autosave notes\" ["), std::string::npos) << outline;
    // A reference read back alone gives the same line.
    const std::size_t at = outline.find("[", outline.find("checkbox \"Autosave notes\""));
    const std::string ref = outline.substr(at + 1, outline.find("]", at) - at - 1);
    const std::string again = call("get_element", {{"ref", ref}})["content"][0]["text"];
    EXPECT_NE(again.find("checkbox \"Autosave notes\" [" + ref + "]"), std::string::npos) << again;
    const std::string small = call("get_ui_tree", {{"app_name", "Quick Notes"}, {"max_chars", 1000}, {"max_nodes", 3}})
                                  ["content"][0]["text"];
    EXPECT_NE(small.find("truncated"), std::string::npos) << small;
    // A failure of the 24 and of the element tools: the reason, then its kind and case.
    const Json missed = call("click_button", {{"app_name", "Quick Notes"}, {"button_name", "Publish"}});
    EXPECT_EQ(Json::parse(missed["content"][1]["text"].get<std::string>())["case"], "buttonNotFound");
    const Json stale = call("act_on_element", {{"ref", "120:0.99~0000"}, {"action", "press"}});
    EXPECT_TRUE(stale["isError"].get<bool>());
    EXPECT_EQ(Json::parse(stale["content"][1]["text"].get<std::string>())["kind"], "stale");
}

}  // namespace
}  // namespace zeblo::testing

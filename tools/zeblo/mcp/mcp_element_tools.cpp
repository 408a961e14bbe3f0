// The MCP server's element tools: a window as an outline of elements with
// references, finding elements, acting on one by its reference, waiting for
// one, and pressing keys by name. Their results are kept small for an
// agent's context: outlines of one line per element, capped in nodes, text
// and characters, each cap saying what it left out.
#include <memory>

#include "mcp_server.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::mcp {
namespace {

constexpr std::int64_t kTimeMax = 600000;

Param appName() {
    return {"app_name", Kind::string,
            "Application name (exact, else matched loosely); omit for the frontmost application."};
}
Param windowName() {
    return {"window_name", Kind::string,
            "Window title, matched loosely; omit for every window of the application."};
}
Param optionalText(std::string name, std::string description) {
    return {std::move(name), Kind::string, std::move(description)};
}
Param optionalFlag(std::string name, std::string description) {
    return {std::move(name), Kind::boolean, std::move(description)};
}
Param integer(std::string name, std::string description, std::int64_t min, std::int64_t max, Json fallback) {
    return {std::move(name), Kind::integer, std::move(description), false, min, max, std::move(fallback)};
}

std::string taken(const char* result) {
    const std::unique_ptr<const char, void (*)(const char*)> owned(result, zeblo_free_string);
    return result == nullptr ? std::string(R"({"error":{"kind":"internal","case":"outOfMemory","message":"out of memory"}})")
                             : std::string(result);
}

// The result of an element function: its JSON, or its error's message as a
// failure that carries the kind and case.
struct Result {
    Json json;
    std::optional<Outcome> failed;
};
Result call(const char* result) {
    const std::string text = taken(result);
    Json parsed = Json::parse(text, nullptr, false);
    if (parsed.is_object() && parsed.contains("error") && parsed["error"].is_object()) {
        const Json& e = parsed["error"];
        return {parsed, Outcome{e.value("message", "failed"), true, e.dump()}};
    }
    return {std::move(parsed), std::nullopt};
}

// The scope and criteria members of a query, from the arguments given.
Json query(const Arguments& a, std::initializer_list<std::pair<const char*, const char*>> names) {
    Json q = Json::object();
    for (const auto& [param, key] : names) {
        const Json& v = a.value(param);
        if (!v.is_null()) q[key] = v;
    }
    return q;
}

// One line for a node: `- button "OK" = "value" (disabled, checked) [REF]`.
std::string line(const Json& node, std::size_t depth) {
    std::string out(depth * 2, ' ');
    out += "- " + node.value("role", "unknown");
    if (node.contains("name")) out += " " + Json(node["name"]).dump();
    if (node.contains("value")) out += " = " + Json(node["value"]).dump();
    if (node.contains("states")) {
        out += " (";
        for (std::size_t i = 0; i < node["states"].size(); ++i) out += (i ? ", " : "") + node["states"][i].get<std::string>();
        out += ")";
    }
    if (node.contains("ref")) out += " [" + node["ref"].get<std::string>() + "]";
    return out;
}

void outline(const Json& node, std::size_t depth, std::vector<std::string>& lines) {
    lines.push_back(line(node, depth));
    for (const Json& child : node.value("children", Json::array())) outline(child, depth + 1, lines);
    if (node.contains("more")) {
        lines.push_back(std::string((depth + 1) * 2, ' ') + "- ... " + std::to_string(node["more"].get<std::int64_t>()) +
                        " more not shown");
    }
}

// The lines under `header`, cut to `maxChars` characters with a last line
// that says how many were left out.
std::string joined(std::string header, const std::vector<std::string>& lines, std::size_t maxChars) {
    std::string out = std::move(header);
    std::size_t i = 0;
    for (; i < lines.size(); ++i) {
        if (out.size() + lines[i].size() + 1 > maxChars) break;
        out += "\n" + lines[i];
    }
    if (i < lines.size()) out += "\n[truncated: " + std::to_string(lines.size() - i) + " more lines; narrow the query]";
    return out;
}

std::string header(const Json& result, const std::string& what) {
    std::string out = what + " of " + result.value("app", std::string()) + " (pid " +
                      std::to_string(result.value("pid", 0)) + ")";
    if (result.contains("truncated")) out += ", truncated " + result["truncated"].dump();
    return out;
}

}  // namespace

void addElementTools(std::vector<Tool>& t) {
    t.push_back({"get_ui_tree", "See a window's elements",
                 "An outline of the elements a user sees in a window (or every window of an application): one "
                 "line per element, `- role \"name\" = \"value\" (states) [ref]`, nested by containment. Use the "
                 "ref with act_on_element. Plain containers are left out; limits say what they cut.",
                 {appName(), windowName(), optionalText("ref", "Only the elements under this reference."),
                  integer("max_nodes", "Elements listed at most.", 1, 2000, 300),
                  integer("max_depth", "Levels listed below the window.", 0, 49, 30),
                  integer("max_text", "Characters of a name or value.", 10, 2000, 80),
                  integer("max_chars", "Characters of the whole answer.", 1000, 200000, 20000),
                  optionalFlag("include_hidden", "Also list elements a user cannot see (no references)."),
                  optionalFlag("menu_bar", "The application's menu bar instead of its windows.")},
                 true, true, [](const Arguments& a) {
                     Json q = query(a, {{"app_name", "app"}, {"window_name", "window"}, {"ref", "ref"}});
                     q["maxNodes"] = a.integer("max_nodes");
                     q["maxDepth"] = a.integer("max_depth");
                     q["maxText"] = a.integer("max_text");
                     if (a.value("include_hidden").is_boolean()) q["hidden"] = a.flag("include_hidden");
                     if (a.value("menu_bar").is_boolean()) q["menuBar"] = a.flag("menu_bar");
                     Result r = call(zeblo_element_tree(q.dump().c_str()));
                     if (r.failed) return *r.failed;
                     std::vector<std::string> lines;
                     for (const Json& root : r.json["tree"]) outline(root, 0, lines);
                     return Outcome{joined(header(r.json, "Elements"), lines,
                                           static_cast<std::size_t>(a.integer("max_chars"))),
                                    false};
                 }});
    t.push_back({"find_elements", "Find elements",
                 "The elements that match, one line each with its ref: by role (button, checkbox, textfield, "
                 "menuitem...), name (a part is enough, case ignored), text in name, value or description, "
                 "value, and states.",
                 {appName(), windowName(), optionalText("role", "Role, e.g. button, textfield, checkbox."),
                  optionalText("name", "Name, matched loosely."),
                  optionalText("text", "Text in the name, value or description."),
                  optionalText("value", "Value, matched loosely."),
                  optionalFlag("enabled", "Only enabled (true) or disabled (false) ones."),
                  optionalFlag("checked", "Only checked (true) or unchecked (false) ones."),
                  optionalFlag("focused", "Only the focused one (true)."),
                  integer("limit", "Matches listed at most.", 1, 500, 20)},
                 true, true, [](const Arguments& a) {
                     Json q = query(a, {{"app_name", "app"}, {"window_name", "window"}, {"role", "role"},
                                        {"name", "name"}, {"text", "text"}, {"value", "value"}});
                     Json state = query(a, {{"enabled", "enabled"}, {"checked", "checked"}, {"focused", "focused"}});
                     if (!state.empty()) q["state"] = std::move(state);
                     q["limit"] = a.integer("limit");
                     q["maxText"] = 80;
                     Result r = call(zeblo_element_find(q.dump().c_str()));
                     if (r.failed) return *r.failed;
                     std::vector<std::string> lines;
                     for (const Json& m : r.json["matches"]) lines.push_back(line(m, 0));
                     return Outcome{joined(header(r.json, std::to_string(r.json["count"].get<std::int64_t>()) +
                                                              " match(es)"),
                                           lines, 20000),
                                    false};
                 }});
    t.push_back({"get_element", "Read an element again",
                 "The element of a ref from get_ui_tree or find_elements as it is now: its line, with its role, "
                 "name, value, states and actions. A ref whose element changed fails as stale.",
                 {{"ref", Kind::string, "The element's reference, e.g. 1234:0.3.1~9f2c.", true}}, true, true,
                 [](const Arguments& a) {
                     Result r = call(zeblo_element_get(a.text("ref")));
                     if (r.failed) return *r.failed;
                     return Outcome{line(r.json["element"], 0), false};
                 }});
    t.push_back({"act_on_element", "Act on an element",
                 "Acts on the element of a ref from get_ui_tree or find_elements: press, toggle, check, uncheck, "
                 "focus, set_value (text fields, check boxes: true/false, pop-up buttons: the item, sliders: a "
                 "number), select, expand, collapse, open_menu (its items come back with refs), "
                 "scroll_into_view, increment, decrement. A ref whose element changed fails as stale and acts "
                 "on nothing: read the tree again.",
                 {{"ref", Kind::string, "The element's reference, e.g. 1234:0.3.1~9f2c.", true},
                  {"action", Kind::string, "The action.", true},
                  optionalText("value", "The value, for set_value.")},
                 false, false, [](const Arguments& a) {
                     Result r = call(zeblo_element_act(a.text("ref"), a.text("action"), a.text("value")));
                     if (r.failed) return *r.failed;
                     std::string text = r.json.dump();
                     if (r.json.contains("menu")) {
                         std::vector<std::string> lines;
                         for (const Json& item : r.json["menu"]) lines.push_back(line(item, 0));
                         Json rest = r.json;
                         rest.erase("menu");
                         text = joined(rest.dump() + "\nmenu items:", lines, 20000);
                     }
                     return Outcome{std::move(text), false};
                 }});
    t.push_back({"wait_for_element", "Wait for an element",
                 "Waits until an element matching role / name / text appears, disappears, is enabled or has a "
                 "value, polling every 0.1 s up to timeout ms. Answers the element's line, or a timeout error.",
                 {appName(), windowName(), optionalText("role", "Role."), optionalText("name", "Name, loosely."),
                  optionalText("text", "Text in the name, value or description."),
                  optionalText("until", "appears (default), disappears, enabled or value."),
                  optionalText("equals", "The value waited for, with until=value."),
                  integer("timeout", "Milliseconds to wait.", 0, kTimeMax, 5000)},
                 true, true, [](const Arguments& a) {
                     Json q = query(a, {{"app_name", "app"}, {"window_name", "window"}, {"role", "role"},
                                        {"name", "name"}, {"text", "text"}, {"until", "until"}, {"equals", "equals"}});
                     q["timeout"] = a.integer("timeout");
                     q["maxText"] = 80;
                     Result r = call(zeblo_element_wait(q.dump().c_str()));
                     if (r.failed) return *r.failed;
                     return Outcome{r.json.contains("element") ? line(r.json["element"], 0) : std::string("done"),
                                    false};
                 }});
    t.push_back({"press_keys", "Press keys by name",
                 "Brings the application to the front and presses keys by name: chords joined with + and "
                 "separated by blanks, e.g. \"ctrl+s\", \"ctrl+shift+t\", \"home\", \"pageup\", \"return\", "
                 "\"ctrl+a backspace\". Modifiers: ctrl, shift, alt, cmd (Command on macOS, Control elsewhere).",
                 {appName(), {"keys", Kind::string, "The keys, e.g. \"ctrl+s\".", true}}, false, false,
                 [](const Arguments& a) {
                     Result r = call(zeblo_press_keys(a.text("app_name"), a.text("keys")));
                     if (r.failed) return *r.failed;
                     return Outcome{r.json.dump(), false};
                 }});
    // The export each element tool calls.
    static constexpr std::pair<std::string_view, std::string_view> kExports[] = {
        {"get_ui_tree", "zeblo_element_tree"}, {"find_elements", "zeblo_element_find"},
        {"get_element", "zeblo_element_get"},  {"act_on_element", "zeblo_element_act"},
        {"wait_for_element", "zeblo_element_wait"}, {"press_keys", "zeblo_press_keys"}};
    for (Tool& tool : t) {
        for (const auto& [name, exported] : kExports) {
            if (tool.name == name) tool.exportName = exported;
        }
    }
}

std::string lastFailure() {
    const std::string text = taken(zeblo_last_failure());
    return text == "null" ? std::string() : text;
}

}  // namespace zeblo::mcp

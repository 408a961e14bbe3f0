// The MCP server's tools: one per operation, each calling the library's C
// function, its failure text taken from the log line the call writes.
#include <limits>
#include <memory>

#include "mcp_server.h"
#include "platform/platform.h"
#include "zeblo/zeblo.h"

namespace zeblo::mcp {
namespace {

constexpr std::int64_t kInt32Max = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kTimeMax = 600000;  // ten minutes: one call must not hold the server longer

Param appName() {
    return {"app_name", Kind::string,
            "Application name (exact, else matched loosely); omit for the frontmost application."};
}
Param exactAppName() {
    return {"app_name", Kind::string,
            "Exact application name as get_running_apps lists it; omit for the frontmost application."};
}
Param windowName() {
    return {"window_name", Kind::string,
            "Window title, matched loosely (case and spaces ignored, a part is enough); omit for the first window."};
}
Param menuPath() {
    return {"menu_path", Kind::stringArray,
            "Menu titles from the menu bar down, each exact, e.g. [\"File\", \"Save As…\"].", true};
}
Param integer(std::string name, std::string description, std::int64_t min, std::int64_t max, Json fallback,
              bool required = false) {
    return {std::move(name), Kind::integer, std::move(description), required, min, max, std::move(fallback)};
}
Param flag(std::string name, std::string description, bool fallback) {
    return {std::move(name), Kind::boolean, std::move(description), false, 0, 0, fallback};
}
Param text(std::string name, std::string description) {
    return {std::move(name), Kind::string, std::move(description), true};
}

// The library's generic descriptions of typed errors name only a type and a
// case number ("... (ZEBLOui.MenuError error 1.)"); an agent is also told
// what the case means.
std::string explained(std::string text) {
    struct Case {
        const char* tail;
        const char* meaning;
    };
    static const Case cases[] = {
        {"AppError error 0.)", "application not found"},     {"AppError error 1.)", "no frontmost application"},
        {"AppError error 2.)", "activation failed"},         {"AppError error 3.)", "launch failed"},
        {"MenuError error 0.)", "application not found"},    {"MenuError error 1.)", "menu item not found"},
        {"MenuError error 2.)", "no frontmost application"}, {"MenuError error 3.)", "menu bar not found"},
        {"MenuError error 4.)", "empty menu path"},          {"MenuError error 5.)", "the item refused to be chosen"},
        {"KeystrokeError error 0.)", "application not found"},
        {"KeystrokeError error 1.)", "no frontmost application"},
    };
    for (const Case& c : cases) {
        const std::string tail = std::string("(ZEBLOui.") + c.tail;
        if (text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0) {
            return text + " \xe2\x80\x94 " + c.meaning;
        }
    }
    return text;
}

// A string result: its JSON, or the text of its error object as a failure.
Outcome fromString(const char* result) {
    const std::unique_ptr<const char, void (*)(const char*)> owned(result, zeblo_free_string);
    if (result == nullptr) return {"out of memory", true};
    std::string text(result);
    const Json parsed = Json::parse(text, nullptr, false);
    if (parsed.is_object() && parsed.size() == 1 && parsed.contains("error") && parsed["error"].is_string()) {
        return {explained(parsed["error"].get<std::string>()), true, lastFailure()};
    }
    return {std::move(text), false};
}

// A boolean answer. A false from a function that logs why is a failure with
// the description its failure line gives; a quiet function's false is an
// answer ("no").
Outcome fromBool(bool ok, const platform::LogCapture& log, std::string_view function, bool quiet) {
    if (ok || quiet) return {ok ? "true" : "false", false};
    const std::string prefix = std::string(function) + " error: ";
    for (auto it = log.lines().rbegin(); it != log.lines().rend(); ++it) {
        if (it->rfind(prefix, 0) == 0) return {explained(it->substr(prefix.size())), true, lastFailure()};
    }
    return {std::string(function) + " failed", true, lastFailure()};
}

// Runs a boolean function with its log captured.
template <class Call>
Outcome boolTool(std::string_view function, bool quiet, Call call) {
    platform::LogCapture log;
    const bool ok = call();
    return fromBool(ok, log, function, quiet);
}

std::vector<const char*> pointers(const std::vector<std::string>& titles) {
    std::vector<const char*> out;
    for (const auto& t : titles) out.push_back(t.c_str());
    return out;
}

template <class Fn>
Outcome menuBool(const Arguments& a, std::string_view function, bool quiet, Fn fn) {
    const std::vector<std::string> titles = a.strings("menu_path");
    const std::vector<const char*> path = pointers(titles);
    return boolTool(function, quiet, [&] {
        return fn(a.text("app_name"), path.data(), static_cast<std::int32_t>(path.size()));
    });
}

std::vector<Tool> makeTools() {
    std::vector<Tool> t;
    // --- menus
    t.push_back({"get_app_menus", "Read an application's menu bar",
                 "The whole menu bar of an application as JSON: {\"app\", \"menus\": [item]}, each item with "
                 "title, path (its ancestors' titles), enabled, checked, and when present cmdChar, "
                 "cmdModifiers (1 Shift, 2 Option, 4 Control, 8 no Command) and children. Use the titles "
                 "as menu_path for menu_click.",
                 {exactAppName()}, true, true,
                 [](const Arguments& a) { return fromString(zeblo_get_app_menus(a.text("app_name"))); }});
    t.push_back({"menu_click", "Choose a menu item",
                 "Chooses the menu item at menu_path (as a user clicking it). Answers true, or an error "
                 "saying which title was not found or that the item refused (e.g. disabled).",
                 {exactAppName(), menuPath()}, false, false,
                 [](const Arguments& a) { return menuBool(a, "zeblo_menu_click", false, zeblo_menu_click); }});
    t.push_back({"menu_item_exists", "Check that a menu item exists",
                 "Whether every title of menu_path is found (enabled or not): true or false. Presses nothing.",
                 {exactAppName(), menuPath()}, true, true,
                 [](const Arguments& a) { return menuBool(a, "zeblo_menu_item_exists", true, zeblo_menu_item_exists); }});
    t.push_back({"menu_item_enabled", "Check that a menu item is enabled",
                 "Whether the item at menu_path is found and enabled: true or false. Presses nothing.",
                 {exactAppName(), menuPath()}, true, true,
                 [](const Arguments& a) { return menuBool(a, "zeblo_menu_item_enabled", true, zeblo_menu_item_enabled); }});
    // --- keyboard and text
    t.push_back({"send_keystroke", "Press a key in an application",
                 "Brings the application to the front and presses one key with modifiers.",
                 {exactAppName(),
                  text("key_char", "The key: a-z, 0-9, a symbol such as ; or /, \" \", \"\\t\" (Tab), \"\\n\" "
                                   "(Return), \"\\b\" (Delete), \"\\u001b\" (Escape), f1-f12, left, right, up, "
                                   "down. Nothing else: a shifted symbol is its unshifted key with Shift (\"!\" "
                                   "is 1 with modifiers 1)."),
                  integer("modifiers", "Sum of 1 Shift, 2 Control, 4 Option, 8 Command.", 0, 15, 0)},
                 false, false, [](const Arguments& a) {
                     return boolTool("zeblo_send_keystroke", false, [&] {
                         return zeblo_send_keystroke(a.text("app_name"), a.text("key_char"),
                                                     static_cast<std::int32_t>(a.integer("modifiers")));
                     });
                 }});
    t.push_back({"send_global_keystroke", "Press a chord of key codes",
                 "Presses virtual key codes (US layout, e.g. 55 Command, 9 V) down in order and up in reverse, "
                 "into whatever has the keyboard focus.",
                 {{"key_codes", Kind::integerArray, "Virtual key codes, 0 to 65535.", true, 0, 65535},
                  integer("modifier_flags",
                          "Event flags: 131072 Shift, 262144 Control, 524288 Option, 1048576 Command (a sum).", 0,
                          std::numeric_limits<std::int64_t>::max(), 0)},
                 false, false, [](const Arguments& a) {
                     std::vector<std::uint16_t> codes;
                     for (std::int64_t c : a.integers("key_codes")) codes.push_back(static_cast<std::uint16_t>(c));
                     return boolTool("zeblo_send_global_keystroke", false, [&] {
                         return zeblo_send_global_keystroke(codes.data(), static_cast<std::int32_t>(codes.size()),
                                                            static_cast<std::uint64_t>(a.integer("modifier_flags")));
                     });
                 }});
    t.push_back({"type_text", "Type text",
                 "Types text key by key into whatever has the keyboard focus: printable ASCII, tab and "
                 "newline only (use paste_text for anything else).",
                 {text("text", "The text to type."), flag("mark_events", "Mark the key events as synthetic.", false)},
                 false, false, [](const Arguments& a) {
                     return boolTool("zeblo_type_text", false,
                                     [&] { return zeblo_type_text(a.text("text"), a.flag("mark_events")); });
                 }});
    t.push_back({"paste_text", "Paste text",
                 "Pastes any text into whatever has the keyboard focus through the clipboard, then puts the "
                 "user's clipboard back.",
                 {text("text", "The text to paste.")}, false, false, [](const Arguments& a) {
                     return boolTool("zeblo_paste_text", false, [&] { return zeblo_paste_text(a.text("text")); });
                 }});
    t.push_back({"paste_into_focused_field", "Set the focused text field",
                 "Sets the whole value of the focused text field directly (no keystrokes, clipboard untouched), "
                 "then presses Return if asked.",
                 {text("text", "The field's new value."), flag("send_enter", "Press Return afterwards.", false)},
                 false, false, [](const Arguments& a) {
                     return boolTool("zeblo_paste_into_focused_field", false, [&] {
                         return zeblo_paste_into_focused_field(a.text("text"), a.flag("send_enter"));
                     });
                 }});
    // --- windows and controls
    t.push_back({"click_button", "Press a button",
                 "Presses the first button in the window whose title matches button_name loosely.",
                 {appName(), windowName(), text("button_name", "Button title, matched loosely.")}, false, false,
                 [](const Arguments& a) {
                     return boolTool("zeblo_click_button", false, [&] {
                         return zeblo_click_button(a.text("app_name"), a.text("window_name"), a.text("button_name"));
                     });
                 }});
    t.push_back({"click_checkbox", "Toggle a check box",
                 "Presses (toggles) the first check box in the window whose title matches checkbox_name loosely.",
                 {appName(), windowName(), text("checkbox_name", "Check box title, matched loosely.")}, false, false,
                 [](const Arguments& a) {
                     return boolTool("zeblo_click_checkbox", false, [&] {
                         return zeblo_click_checkbox(a.text("app_name"), a.text("window_name"), a.text("checkbox_name"));
                     });
                 }});
    t.push_back({"get_window_buttons", "List a window's buttons",
                 "The titles of the window's buttons, in order, as a JSON array.", {appName(), windowName()}, true,
                 true, [](const Arguments& a) {
                     return fromString(zeblo_get_window_buttons(a.text("app_name"), a.text("window_name")));
                 }});
    t.push_back({"set_checkbox_value", "Set a check box",
                 "Sets the check box whose title matches checkbox_name loosely to value (0 off, 1 on).",
                 {appName(), windowName(), text("checkbox_name", "Check box title, matched loosely."),
                  integer("value", "0 off, 1 on.", -kInt32Max - 1, kInt32Max, nullptr, true)},
                 false, true, [](const Arguments& a) {
                     return boolTool("zeblo_set_checkbox_value", false, [&] {
                         return zeblo_set_checkbox_value(a.text("app_name"), a.text("window_name"),
                                                         a.text("checkbox_name"),
                                                         static_cast<std::int32_t>(a.integer("value")));
                     });
                 }});
    t.push_back({"get_popup_menu_items", "List a popup button's choices",
                 "Opens the popup button whose title matches popup_name loosely and returns its items' titles as a "
                 "JSON array (it leaves the popup open; nothing is chosen).",
                 {appName(), windowName(), text("popup_name", "Popup button title, matched loosely.")}, false, true,
                 [](const Arguments& a) {
                     return fromString(
                         zeblo_get_popup_menu_items(a.text("app_name"), a.text("window_name"), a.text("popup_name")));
                 }});
    t.push_back({"get_window_text", "Read a window's text",
                 "The window's text as a JSON array of lines, one per element: \"[ROLE attribute] text\".",
                 {appName(), windowName()}, true, true, [](const Arguments& a) {
                     return fromString(zeblo_get_window_text(a.text("app_name"), a.text("window_name")));
                 }});
    // --- applications
    t.push_back({"get_frontmost_info", "The frontmost application",
                 "{\"app\": name, \"window\": focused window title} of the frontmost application.", {}, true, true,
                 [](const Arguments&) { return fromString(zeblo_get_frontmost_info()); }});
    t.push_back({"get_running_apps", "List running applications",
                 "The names of the running applications, as a JSON array, in the workspace's order.", {}, true, true,
                 [](const Arguments&) { return fromString(zeblo_get_running_apps()); }});
    t.push_back({"focus_app", "Bring an application to the front",
                 "Activates the application (matched loosely), launching it first if asked, then waits up to "
                 "timeout ms for window_name to be its focused window (a window that does not come is not an "
                 "error).",
                 {appName(), windowName(), flag("should_switch", "Activate the application.", true),
                  flag("should_launch", "Launch it when it is not running.", false),
                  integer("timeout", "Milliseconds to wait for window_name.", 0, kTimeMax, 0)},
                 false, true, [](const Arguments& a) {
                     return boolTool("zeblo_focus_app", false, [&] {
                         return zeblo_focus_app(a.text("app_name"), a.text("window_name"), a.flag("should_switch"),
                                                a.flag("should_launch"), static_cast<std::int32_t>(a.integer("timeout")));
                     });
                 }});
    t.push_back({"launch_app", "Launch an application",
                 "Asks the system to launch the application by name (no waiting).",
                 {text("app_name", "The application's name (or program name).")}, false, false,
                 [](const Arguments& a) {
                     return boolTool("zeblo_launch_app", false, [&] { return zeblo_launch_app(a.text("app_name")); });
                 }});
    t.push_back({"is_in_text_field", "Is the focus in a text field",
                 "Whether the keyboard focus is in a text field: true or false.", {}, true, true,
                 [](const Arguments&) {
                     return boolTool("zeblo_is_in_text_field", true, [] { return zeblo_is_in_text_field(); });
                 }});
    // --- windows, continued
    t.push_back({"window_exists", "Check that a window exists",
                 "Whether the application runs and has the window: true or false.", {appName(), windowName()}, true,
                 true, [](const Arguments& a) {
                     return boolTool("zeblo_window_exists", true,
                                     [&] { return zeblo_window_exists(a.text("app_name"), a.text("window_name")); });
                 }});
    t.push_back({"get_window_titles", "List an application's windows",
                 "The titles of the application's windows, as a JSON array ([] when the application is not found).", {appName()}, true, true,
                 [](const Arguments& a) { return fromString(zeblo_get_window_titles(a.text("app_name"))); }});
    t.push_back({"wait_for_window", "Wait for a window",
                 "Polls every 50 ms, up to timeout ms, until the window exists (condition 0), is gone (1) or "
                 "is in front (2): true when it happened, false when the time ran out.",
                 {appName(), windowName(), integer("condition", "0 exists, 1 gone, 2 in front.", 0, 2, 0),
                  integer("timeout", "Milliseconds to wait.", 0, kTimeMax, nullptr, true)},
                 true, true, [](const Arguments& a) {
                     return boolTool("zeblo_wait_for_window", true, [&] {
                         return zeblo_wait_for_window(a.text("app_name"), a.text("window_name"),
                                                      static_cast<std::int32_t>(a.integer("condition")),
                                                      static_cast<std::int32_t>(a.integer("timeout")));
                     });
                 }});
    t.push_back({"close_window", "Close a window",
                 "Presses the window's close button; with retry_timeout (ms), tries again until the window is "
                 "gone or the time is out.",
                 {appName(), windowName(),
                  integer("retry_timeout", "Milliseconds to keep trying; -1 for a single try.", -1, kTimeMax, -1)},
                 false, false, [](const Arguments& a) {
                     return boolTool("zeblo_close_window", false, [&] {
                         return zeblo_close_window(a.text("app_name"), a.text("window_name"),
                                                   static_cast<std::int32_t>(a.integer("retry_timeout")));
                     });
                 }});
    return t;
}

}  // namespace

const std::vector<Tool>& allTools() {
    static const std::vector<Tool> tools = [] {
        std::vector<Tool> all = makeTools();
        addElementTools(all);
        return all;
    }();
    return tools;
}

}  // namespace zeblo::mcp

// The MCP server's tools, made from the table of the exports: a tool for
// each export but zeblo_free_string, named like it without the prefix, its
// arguments the export's parameters in snake case, read-only when the export
// only reads. What is the server's own is here: the titles and descriptions,
// and the ranges and defaults of the numbers and switches.
#include <limits>
#include <map>
#include <stdexcept>

#include "capi/export_table.h"
#include "core/error.h"
#include "mcp_server.h"
#include "platform/platform.h"

namespace zeblo::mcp {
namespace {

using capi::Argument;
using capi::ParamKind;

constexpr std::int64_t kInt32Min = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kInt32Max = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kTimeMax = 600000;  // ten minutes: one call must not hold the server longer

// What the server says of one parameter: its description, and for a number
// or switch its range and its value when left out (null: it must be given).
struct ParamText {
    std::string_view param;
    std::string_view description;
    std::int64_t min = 0, max = 0;
    Json fallback = nullptr;
};

struct ToolText {
    std::string_view title;
    std::string_view description;
    bool idempotent;
    std::vector<ParamText> params;
};

const ParamText kAppName{"appName",
                         "Application name (exact, else matched loosely); omit for the frontmost application."};
const ParamText kExactAppName{
    "appName", "Exact application name as get_running_apps lists it; omit for the frontmost application."};
const ParamText kWindowName{
    "windowName",
    "Window title, matched loosely (case and spaces ignored, a part is enough); omit for the first window."};
const ParamText kMenuPath{"menuPath", "Menu titles from the menu bar down, each exact, e.g. [\"File\", \"Save As…\"]."};

const std::map<std::string_view, ToolText>& toolTexts() {
    static const std::map<std::string_view, ToolText> texts = {
        // --- menus
        {"zeblo_get_app_menus",
         {"Read an application's menu bar",
          "The whole menu bar of an application as JSON: {\"app\", \"menus\": [item]}, each item with title, path "
          "(its ancestors' titles), enabled, checked, and when present cmdChar, cmdModifiers (1 Shift, 2 Option, 4 "
          "Control, 8 no Command) and children. Use the titles as menu_path for menu_click.",
          true,
          {kExactAppName}}},
        {"zeblo_menu_click",
         {"Choose a menu item",
          "Chooses the menu item at menu_path (as a user clicking it). Answers true, or an error saying which title "
          "was not found or that the item refused (e.g. disabled).",
          false,
          {kExactAppName, kMenuPath}}},
        {"zeblo_menu_item_exists",
         {"Check that a menu item exists",
          "Whether every title of menu_path is found (enabled or not): true or false. Presses nothing.",
          true,
          {kExactAppName, kMenuPath}}},
        {"zeblo_menu_item_enabled",
         {"Check that a menu item is enabled",
          "Whether the item at menu_path is found and enabled: true or false. Presses nothing.",
          true,
          {kExactAppName, kMenuPath}}},
        // --- keyboard and text
        {"zeblo_send_keystroke",
         {"Press a key in an application",
          "Brings the application to the front and presses one key with modifiers.",
          false,
          {kExactAppName,
           {"keyChar",
            "The key: a-z, 0-9, a symbol such as ; or /, \" \", \"\\t\" (Tab), \"\\n\" (Return), \"\\b\" "
            "(Delete), \"\\u001b\" (Escape), f1-f12, left, right, up, down. Nothing else: a shifted symbol "
            "is its unshifted key with Shift (\"!\" is 1 with modifiers 1)."},
           {"modifiers", "Sum of 1 Shift, 2 Control, 4 Option, 8 Command.", 0, 15, 0}}}},
        {"zeblo_send_global_keystroke",
         {"Press a chord of key codes",
          "Presses virtual key codes (US layout, e.g. 55 Command, 9 V) down in order and up in reverse, into whatever "
          "has the keyboard focus.",
          false,
          {{"keyCodes", "Virtual key codes, 0 to 65535.", 0, 65535},
           {"modifierFlags", "Event flags: 131072 Shift, 262144 Control, 524288 Option, 1048576 Command (a sum).", 0,
            std::numeric_limits<std::int64_t>::max(), 0}}}},
        {"zeblo_type_text",
         {"Type text",
          "Types text key by key into whatever has the keyboard focus: printable ASCII, tab and newline only (use "
          "paste_text for anything else).",
          false,
          {{"text", "The text to type."}, {"markEvents", "Mark the key events as synthetic.", 0, 0, false}}}},
        {"zeblo_paste_text",
         {"Paste text",
          "Pastes any text into whatever has the keyboard focus through the clipboard, then puts the user's clipboard "
          "back.",
          false,
          {{"text", "The text to paste."}}}},
        {"zeblo_paste_into_focused_field",
         {"Set the focused text field",
          "Sets the whole value of the focused text field directly (no keystrokes, clipboard untouched), then presses "
          "Return if asked.",
          false,
          {{"text", "The field's new value."}, {"sendEnter", "Press Return afterwards.", 0, 0, false}}}},
        // --- windows and controls
        {"zeblo_click_button",
         {"Press a button",
          "Presses the first button in the window whose title matches button_name loosely.",
          false,
          {kAppName, kWindowName, {"buttonName", "Button title, matched loosely."}}}},
        {"zeblo_click_checkbox",
         {"Toggle a check box",
          "Presses (toggles) the first check box in the window whose title matches checkbox_name loosely.",
          false,
          {kAppName, kWindowName, {"checkboxName", "Check box title, matched loosely."}}}},
        {"zeblo_get_window_buttons",
         {"List a window's buttons",
          "The titles of the window's buttons, in order, as a JSON array.",
          true,
          {kAppName, kWindowName}}},
        {"zeblo_set_checkbox_value",
         {"Set a check box",
          "Sets the check box whose title matches checkbox_name loosely to value (0 off, 1 on).",
          true,
          {kAppName,
           kWindowName,
           {"checkboxName", "Check box title, matched loosely."},
           {"value", "0 off, 1 on.", kInt32Min, kInt32Max}}}},
        {"zeblo_get_popup_menu_items",
         {"List a popup button's choices",
          "Opens the popup button whose title matches popup_name loosely and returns its items' titles as a JSON "
          "array (it leaves the popup open; nothing is chosen).",
          true,
          {kAppName, kWindowName, {"popupName", "Popup button title, matched loosely."}}}},
        {"zeblo_get_window_text",
         {"Read a window's text",
          "The window's text as a JSON array of lines, one per element: \"[ROLE attribute] text\".",
          true,
          {kAppName, kWindowName}}},
        // --- applications
        {"zeblo_get_frontmost_info",
         {"The frontmost application",
          "{\"app\": name, \"window\": focused window title} of the frontmost application.",
          true,
          {}}},
        {"zeblo_get_running_apps",
         {"List running applications",
          "The names of the running applications, as a JSON array, in the workspace's order.",
          true,
          {}}},
        {"zeblo_focus_app",
         {"Bring an application to the front",
          "Activates the application (matched loosely), launching it first if asked, then waits up to timeout ms for "
          "window_name to be its focused window (a window that does not come is not an error).",
          true,
          {kAppName,
           kWindowName,
           {"shouldSwitch", "Activate the application.", 0, 0, true},
           {"shouldLaunch", "Launch it when it is not running.", 0, 0, false},
           {"timeout", "Milliseconds to wait for window_name.", 0, kTimeMax, 0}}}},
        {"zeblo_launch_app",
         {"Launch an application",
          "Asks the system to launch the application by name (no waiting).",
          false,
          {{"appName", "The application's name (or program name)."}}}},
        {"zeblo_is_in_text_field",
         {"Is the focus in a text field", "Whether the keyboard focus is in a text field: true or false.", true, {}}},
        // --- windows, continued
        {"zeblo_window_exists",
         {"Check that a window exists",
          "Whether the application runs and has the window: true or false.",
          true,
          {kAppName, kWindowName}}},
        {"zeblo_get_window_titles",
         {"List an application's windows",
          "The titles of the application's windows, as a JSON array ([] when the application is not found).",
          true,
          {kAppName}}},
        {"zeblo_wait_for_window",
         {"Wait for a window",
          "Polls every 50 ms, up to timeout ms, until the window exists (condition 0), is gone (1) or is in front "
          "(2): true when it happened, false when the time ran out.",
          true,
          {kAppName,
           kWindowName,
           {"condition", "0 exists, 1 gone, 2 in front.", 0, 2, 0},
           {"timeout", "Milliseconds to wait.", 0, kTimeMax}}}},
        {"zeblo_close_window",
         {"Close a window",
          "Presses the window's close button; with retry_timeout (ms), tries again until the window is gone or the "
          "time is out.",
          false,
          {kAppName,
           kWindowName,
           {"retryTimeout", "Milliseconds to keep trying; -1 for a single try.", -1, kTimeMax, -1}}}},
    };
    return texts;
}

// "menuPathCount" -> "menu_path_count".
std::string snakeCase(std::string_view name) {
    std::string out;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z') {
            out += '_';
            out += static_cast<char>(c - 'A' + 'a');
        } else {
            out += c;
        }
    }
    return out;
}

Kind kindOf(ParamKind kind) {
    switch (kind) {
        case ParamKind::titles: return Kind::stringArray;
        case ParamKind::keyCodes: return Kind::integerArray;
        case ParamKind::integer:
        case ParamKind::milliseconds:
        case ParamKind::mask: return Kind::integer;
        case ParamKind::flag: return Kind::boolean;
        case ParamKind::name:
        case ParamKind::text:
        case ParamKind::query:
        case ParamKind::returned: return Kind::string;
    }
    return Kind::string;
}

// A description of a typed error without texts of its own names only a type
// and a case number ("... (ZEBLOui.MenuError error 1.)"); an agent is also
// told what the case means, from the kinds the export raises.
std::string explained(std::string text, const capi::Export& row) {
    const auto named = parseGenericDescription(text);
    if (!named) return text;
    for (const capi::Raises& raises : row.raises) {
        if (raises.kind == nullptr || raises.kind->typeName != named->typeName) continue;
        if (named->caseNumber < static_cast<int>(raises.kind->cases.size())) {
            return text + " \xe2\x80\x94 " + std::string(raises.kind->cases[named->caseNumber].meaning);
        }
    }
    return text;
}

// The export's arguments from the tool's.
std::vector<Argument> argumentsOf(const capi::Export& row, const Arguments& given) {
    std::vector<Argument> out;
    for (const capi::Param& param : row.params) {
        const std::string name = snakeCase(param.name);
        switch (param.kind) {
            case ParamKind::titles: out.emplace_back(given.strings(name)); break;
            case ParamKind::keyCodes: {
                std::vector<std::uint16_t> codes;
                for (const std::int64_t c : given.integers(name)) codes.push_back(static_cast<std::uint16_t>(c));
                out.emplace_back(std::move(codes));
                break;
            }
            case ParamKind::integer:
            case ParamKind::milliseconds: out.emplace_back(static_cast<std::int32_t>(given.integer(name))); break;
            case ParamKind::mask: out.emplace_back(static_cast<std::uint64_t>(given.integer(name))); break;
            case ParamKind::flag: out.emplace_back(given.flag(name)); break;
            case ParamKind::name:
            case ParamKind::text:
            case ParamKind::query:
            case ParamKind::returned: {
                const char* text = given.text(name);
                out.push_back(text != nullptr ? Argument(std::string(text)) : Argument(nullptr));
                break;
            }
        }
    }
    return out;
}

// Calls the export. A string's error object is a failure with its text; a
// false from an export that logs why is a failure with the description its
// failure line gives; a quiet export's false is an answer ("no").
Outcome outcome(const capi::Export& row, const Arguments& given) {
    const std::vector<Argument> arguments = argumentsOf(row, given);
    if (row.result == capi::ResultKind::json) {
        const capi::CallResult result = row.call(arguments);
        if (!result.text) return {"out of memory", true};
        std::string text(result.text.get());
        const Json parsed = Json::parse(text, nullptr, false);
        if (parsed.is_object() && parsed.size() == 1 && parsed.contains("error") && parsed["error"].is_string()) {
            return {explained(parsed["error"].get<std::string>(), row), true, lastFailure()};
        }
        return {std::move(text), false};
    }
    platform::LogCapture log;
    const bool ok = row.call(arguments).answer;
    if (ok || row.failure != capi::Failure::logged) return {ok ? "true" : "false", false};
    const std::string prefix = std::string(row.name) + " error: ";
    for (auto it = log.lines().rbegin(); it != log.lines().rend(); ++it) {
        if (it->starts_with(prefix)) return {explained(it->substr(prefix.size()), row), true, lastFailure()};
    }
    return {std::string(row.name) + " failed", true, lastFailure()};
}

Tool toolOf(const capi::Export& row, const ToolText& text) {
    Tool tool{std::string(row.name.substr(std::string_view("zeblo_").size())),
              std::string(text.title),
              std::string(text.description),
              {},
              row.effect == capi::Effect::reads,
              text.idempotent,
              [&row](const Arguments& a) { return outcome(row, a); },
              row.name};
    for (const capi::Param& param : row.params) {
        const ParamText* said = nullptr;
        for (const ParamText& p : text.params) {
            if (p.param == param.name) said = &p;
        }
        if (said == nullptr) throw std::logic_error("no description of " + std::string(param.name));
        Param p{snakeCase(param.name), kindOf(param.kind), std::string(said->description)};
        p.required = param.kind != ParamKind::name && said->fallback.is_null();
        p.min = said->min;
        p.max = said->max;
        p.fallback = said->fallback;
        tool.params.push_back(std::move(p));
    }
    if (tool.params.size() != text.params.size()) {
        throw std::logic_error("a description of a parameter " + std::string(row.name) + " does not have");
    }
    return tool;
}

}  // namespace

const std::vector<Tool>& allTools() {
    static const std::vector<Tool> tools = [] {
        std::vector<Tool> out;
        for (const capi::Export& row : capi::exportTable()) {
            const auto text = toolTexts().find(row.name);
            if (text != toolTexts().end()) out.push_back(toolOf(row, text->second));
        }
        addElementTools(out);
        return out;
    }();
    return tools;
}

}  // namespace zeblo::mcp

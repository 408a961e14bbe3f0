// The commands of the tool: a word for each export and the words of its
// arguments. APP and WINDOW may be "" (the frontmost application, the first
// window).
#include "cli.h"

namespace zeblo::cli {

const std::vector<Command>& commands() {
    static const std::vector<Command> table = {
        // Menus: a path is one argument per title, from the menu bar down.
        {"menus", "zeblo_get_app_menus", {{"[APP]", "appName"}}},
        {"menu-click", "zeblo_menu_click", {{"APP", "appName"}, {"TITLE...", "menuPath"}}},
        {"menu-exists", "zeblo_menu_item_exists", {{"APP", "appName"}, {"TITLE...", "menuPath"}}},
        {"menu-enabled", "zeblo_menu_item_enabled", {{"APP", "appName"}, {"TITLE...", "menuPath"}}},
        // Keyboard
        {"key", "zeblo_send_keystroke", {{"APP", "appName"}, {"KEY", "keyChar"}, {"MODIFIERS", "modifiers"}}},
        {"chord", "zeblo_send_global_keystroke", {{"FLAGS", "modifierFlags"}, {"CODE...", "keyCodes"}}},
        {"type", "zeblo_type_text", {{"TEXT", "text"}, {"--mark", "markEvents"}}},
        {"paste", "zeblo_paste_text", {{"TEXT", "text"}}},
        {"fill", "zeblo_paste_into_focused_field", {{"TEXT", "text"}, {"--enter", "sendEnter"}}},
        // Windows
        {"click-button", "zeblo_click_button", {{"APP", "appName"}, {"WINDOW", "windowName"}, {"NAME", "buttonName"}}},
        {"click-checkbox",
         "zeblo_click_checkbox",
         {{"APP", "appName"}, {"WINDOW", "windowName"}, {"NAME", "checkboxName"}}},
        {"set-checkbox",
         "zeblo_set_checkbox_value",
         {{"APP", "appName"}, {"WINDOW", "windowName"}, {"NAME", "checkboxName"}, {"VALUE", "value"}}},
        {"buttons", "zeblo_get_window_buttons", {{"APP", "appName"}, {"WINDOW", "windowName"}}},
        {"popup-items",
         "zeblo_get_popup_menu_items",
         {{"APP", "appName"}, {"WINDOW", "windowName"}, {"NAME", "popupName"}}},
        {"window-text", "zeblo_get_window_text", {{"APP", "appName"}, {"WINDOW", "windowName"}}},
        {"window-exists", "zeblo_window_exists", {{"APP", "appName"}, {"WINDOW", "windowName"}}},
        {"windows", "zeblo_get_window_titles", {{"APP", "appName"}}},
        {"wait-window",
         "zeblo_wait_for_window",
         {{"APP", "appName"}, {"WINDOW", "windowName"}, {"CONDITION", "condition"}, {"TIMEOUT", "timeout"}}},
        {"close-window",
         "zeblo_close_window",
         {{"APP", "appName"}, {"WINDOW", "windowName"}, {"RETRY", "retryTimeout"}}},
        // Applications: SWITCH and LAUNCH are 0 or 1.
        {"frontmost", "zeblo_get_frontmost_info", {}},
        {"apps", "zeblo_get_running_apps", {}},
        {"focus",
         "zeblo_focus_app",
         {{"APP", "appName"},
          {"WINDOW", "windowName"},
          {"SWITCH", "shouldSwitch"},
          {"LAUNCH", "shouldLaunch"},
          {"TIMEOUT", "timeout"}}},
        {"launch", "zeblo_launch_app", {{"APP", "appName"}}},
        {"in-text-field", "zeblo_is_in_text_field", {}},
        // Elements (libZEBLOuiPlus): a query's scope is APP and, when given,
        // WINDOW.
        {"tree",
         "zeblo_element_tree",
         {{"APP", "query", "app"}, {"[WINDOW]", "query", "window"}, {"--hidden", "query", "hidden"}}},
        {"find",
         "zeblo_element_find",
         {{"APP", "query", "app"},
          {"TEXT", "query", "text"},
          {"[ROLE]", "query", "role"},
          {"[WINDOW]", "query", "window"}}},
        {"get", "zeblo_element_get", {{"REF", "ref"}}},
        {"act", "zeblo_element_act", {{"REF", "ref"}, {"ACTION", "action"}, {"[VALUE]", "value"}}},
        {"wait-element",
         "zeblo_element_wait",
         {{"APP", "query", "app"},
          {"TEXT", "query", "text"},
          {"[UNTIL]", "query", "until"},
          {"[TIMEOUT]", "query", "timeout", true},
          {"[WINDOW]", "query", "window"}}},
        {"keys", "zeblo_press_keys", {{"APP", "appName"}, {"COMBO", "keys"}}},
    };
    return table;
}

}  // namespace zeblo::cli

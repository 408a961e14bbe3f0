// The table of the exports. A row names its function once: the name, the C
// types and the way to call it are all taken from the function itself.
#include "capi/export_table.h"

#include "capi/export_row.h"
#include "ops/apps/app_error.h"
#include "ops/keyboard/keystroke_error.h"
#include "ops/menus/menu_error.h"
#include "ops/windows/window_error.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {
namespace {

using enum ParamKind;
using enum Effect;
using enum Failure;

const Param kApp{"appName", name};
const Param kWindow{"windowName", name};
const Param kPath{"menuPath", titles};

Raises menuErrors(std::vector<std::string_view> cases) { return {&kMenuError, std::move(cases)}; }
Raises windowErrors(std::vector<std::string_view> cases) { return {&kWindowError, std::move(cases)}; }
Raises appErrors(std::vector<std::string_view> cases) { return {&kAppError, std::move(cases)}; }
const Raises kKeystrokeFailures{nullptr, {}, kKeystrokeDomain};
// Every lookup of a window control: the application, the window, the control.
const std::vector<std::string_view> kFindWindow{"appNotFound", "noFrontmostApp", "windowNotFound"};

std::vector<std::string_view> plus(std::vector<std::string_view> cases, std::vector<std::string_view> more) {
    cases.insert(cases.end(), more.begin(), more.end());
    return cases;
}

std::vector<Export> makeTable() {
    const auto findMenuBar = std::vector<std::string_view>{"appNotFound", "noFrontmostApp", "menuBarNotFound"};
    return {
        // Menus
        ZEBLO_ROW(zeblo_get_app_menus, {kApp}, reads, errorObject, {menuErrors(findMenuBar)}),
        ZEBLO_ROW(zeblo_menu_click, {kApp, kPath}, acts, logged,
                  {menuErrors(plus(findMenuBar, {"menuItemNotFound", "emptyMenuPath", "menuClickFailed"}))}),
        ZEBLO_ROW(zeblo_menu_item_exists, {kApp, kPath}, reads, quiet, {}),
        ZEBLO_ROW(zeblo_menu_item_enabled, {kApp, kPath}, reads, quiet, {}),
        // Keyboard and text
        ZEBLO_ROW(zeblo_send_keystroke, {kApp, {"keyChar", text}, {"modifiers", integer}}, acts, logged,
                  {{&kKeystrokeError, {"appNotFound", "noFrontmostApp"}}, kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_send_global_keystroke, {{"keyCodes", keyCodes}, {"modifierFlags", mask}}, acts, logged,
                  {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_type_text, {{"text", text}, {"markEvents", flag}}, acts, logged, {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_paste_text, {{"text", text}}, acts, logged, {kKeystrokeFailures}),
        ZEBLO_ROW(zeblo_paste_into_focused_field, {{"text", text}, {"sendEnter", flag}}, acts, logged,
                  {kKeystrokeFailures}),
        // Windows and controls
        ZEBLO_ROW(zeblo_click_button, {kApp, kWindow, {"buttonName", text}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"buttonNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_click_checkbox, {kApp, kWindow, {"checkboxName", text}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"checkboxNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_get_window_buttons, {kApp, kWindow}, reads, shortText, {windowErrors(kFindWindow)}),
        ZEBLO_ROW(zeblo_set_checkbox_value, {kApp, kWindow, {"checkboxName", text}, {"value", integer}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"checkboxNotFound", "clickFailed"}))}),
        ZEBLO_ROW(zeblo_get_popup_menu_items, {kApp, kWindow, {"popupName", text}}, acts, errorObject,
                  {windowErrors(plus(kFindWindow, {"buttonNotFound"}))}),
        ZEBLO_ROW(zeblo_get_window_text, {kApp, kWindow}, reads, errorObject, {windowErrors(kFindWindow)}),
        // Applications
        ZEBLO_ROW(zeblo_get_frontmost_info, {}, reads, errorObject, {appErrors({"noFrontmostApp"})}),
        ZEBLO_ROW(zeblo_get_running_apps, {}, reads, fallback, {}),
        ZEBLO_ROW(zeblo_focus_app,
                  {kApp, kWindow, {"shouldSwitch", flag}, {"shouldLaunch", flag}, {"timeout", milliseconds}}, acts,
                  logged, {appErrors({"appNotFound", "activationFailed"})}),
        ZEBLO_ROW(zeblo_launch_app, {{"appName", text}}, acts, logged, {appErrors({"launchFailed"})}),
        ZEBLO_ROW(zeblo_is_in_text_field, {}, reads, quiet, {}),
        // Windows, continued
        ZEBLO_ROW(zeblo_window_exists, {kApp, kWindow}, reads, quiet, {}),
        ZEBLO_ROW(zeblo_get_window_titles, {kApp}, reads, fallback, {}),
        ZEBLO_ROW(zeblo_wait_for_window, {kApp, kWindow, {"condition", integer}, {"timeout", milliseconds}}, reads,
                  quiet, {}),
        ZEBLO_ROW(zeblo_close_window, {kApp, kWindow, {"retryTimeout", milliseconds}}, acts, logged,
                  {windowErrors(plus(kFindWindow, {"closeFailed", "timeout"}))}),
        // Memory
        ZEBLO_ROW(zeblo_free_string, {{"ptr", returned}}, reads, none, {}),
    };
}

#undef ZEBLO_ROW

}  // namespace

void FreeString::operator()(const char* text) const noexcept { zeblo_free_string(text); }

const std::vector<Export>& exportTable() {
    static const std::vector<Export> table = makeTable();
    return table;
}

const Export* findExport(std::string_view name) {
    for (const Export& row : exportTable()) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

}  // namespace zeblo::capi

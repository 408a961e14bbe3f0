// Exported functions of the windows area and their bodies.
#include "capi/bodies.h"
#include "capi/marshal.h"
#include "core/json_writer.h"
#include "ops/windows/window_ops.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {

bool clickButton(const char* appName, const char* windowName, const char* buttonName) noexcept {
    return runLogged("zeblo_click_button", [&] {
        WindowOps::clickButton(decodeString(appName), decodeString(windowName), decodeString(buttonName));
    });
}

bool clickCheckbox(const char* appName, const char* windowName, const char* checkboxName) noexcept {
    return runLogged("zeblo_click_checkbox", [&] {
        WindowOps::clickCheckbox(decodeString(appName), decodeString(windowName), decodeString(checkboxName));
    });
}

// This export writes its own progress lines and its own, shorter error texts;
// when memory runs out it answers "[]".
const char* getWindowButtons(const char* appName, const char* windowName) noexcept {
    return runJson("[]", true,
                   [&] { return WindowOps::getWindowButtonsJSON(decodeString(appName), decodeString(windowName)); });
}

bool setCheckboxValue(const char* appName, const char* windowName, const char* checkboxName,
                      std::int32_t value) noexcept {
    return runLogged("zeblo_set_checkbox_value", [&] {
        WindowOps::setCheckboxValue(decodeString(appName), decodeString(windowName), decodeString(checkboxName),
                                    value);
    });
}

const char* getPopupMenuItems(const char* appName, const char* windowName, const char* popupName) noexcept {
    return runJson("[]", false, [&] {
        return json::stringArray(
            WindowOps::getPopupMenuItems(decodeString(appName), decodeString(windowName), decodeString(popupName)));
    });
}

const char* getWindowText(const char* appName, const char* windowName) noexcept {
    return runJson("[]", false, [&] {
        return json::stringArray(WindowOps::getWindowText(decodeString(appName), decodeString(windowName)));
    });
}

bool windowExists(const char* appName, const char* windowName) noexcept {
    return runQuiet([&] { return WindowOps::windowExists(decodeString(appName), decodeString(windowName)); });
}

const char* getWindowTitles(const char* appName) noexcept {
    return runJson("[]", true, [&] { return json::stringArray(WindowOps::getWindowTitles(decodeString(appName))); });
}

bool waitForWindow(const char* appName, const char* windowName, std::int32_t condition,
                   std::int32_t timeout) noexcept {
    return runQuiet([&] {
        return WindowOps::waitForWindow(decodeString(appName), decodeString(windowName), condition, timeout);
    });
}

bool closeWindow(const char* appName, const char* windowName, std::int32_t retryTimeout) noexcept {
    return runLogged("zeblo_close_window", [&] {
        WindowOps::closeWindow(decodeString(appName), decodeString(windowName),
                               capi::retryTimeout(retryTimeout));
    });
}

}  // namespace zeblo::capi

extern "C" {

bool zeblo_click_button(const char* appName, const char* windowName, const char* buttonName) {
    return zeblo::capi::clickButton(appName, windowName, buttonName) & 1;
}
bool zeblo_click_checkbox(const char* appName, const char* windowName, const char* checkboxName) {
    return zeblo::capi::clickCheckbox(appName, windowName, checkboxName) & 1;
}
const char* zeblo_get_window_buttons(const char* appName, const char* windowName) {
    return zeblo::capi::getWindowButtons(appName, windowName);
}
bool zeblo_set_checkbox_value(const char* appName, const char* windowName, const char* checkboxName, int32_t value) {
    return zeblo::capi::setCheckboxValue(appName, windowName, checkboxName, value) & 1;
}
const char* zeblo_get_popup_menu_items(const char* appName, const char* windowName, const char* popupName) {
    return zeblo::capi::getPopupMenuItems(appName, windowName, popupName);
}
const char* zeblo_get_window_text(const char* appName, const char* windowName) {
    return zeblo::capi::getWindowText(appName, windowName);
}
bool zeblo_window_exists(const char* appName, const char* windowName) {
    return zeblo::capi::windowExists(appName, windowName) & 1;
}
const char* zeblo_get_window_titles(const char* appName) { return zeblo::capi::getWindowTitles(appName); }
bool zeblo_wait_for_window(const char* appName, const char* windowName, int32_t condition, int32_t timeout) {
    return zeblo::capi::waitForWindow(appName, windowName, condition, timeout) & 1;
}
bool zeblo_close_window(const char* appName, const char* windowName, int32_t retryTimeout) {
    return zeblo::capi::closeWindow(appName, windowName, retryTimeout) & 1;
}

}  // extern "C"

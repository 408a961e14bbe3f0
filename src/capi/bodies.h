// The body functions behind the exported C functions. Each export is a thin
// entry point that forwards its arguments to the body named after it; the body
// converts the arguments, calls one operation, and converts its result back.
// Bodies never throw.
#pragma once

#include <cstdint>

namespace zeblo::capi {

// Menus
const char* getAppMenus(const char* appName) noexcept;
bool menuClick(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept;
bool menuItemExists(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept;
bool menuItemEnabled(const char* appName, const char* const* menuPath, std::int32_t menuPathCount) noexcept;

// Keyboard and text
bool sendKeystroke(const char* appName, const char* keyChar, std::int32_t modifiers) noexcept;
bool sendGlobalKeystroke(const std::uint16_t* keyCodes, std::int32_t keyCodesCount,
                         std::uint64_t modifierFlags) noexcept;
bool typeText(const char* text, bool markEvents) noexcept;
bool pasteText(const char* text) noexcept;
bool pasteIntoFocusedField(const char* text, bool sendEnter) noexcept;

// Windows and controls
bool clickButton(const char* appName, const char* windowName, const char* buttonName) noexcept;
bool clickCheckbox(const char* appName, const char* windowName, const char* checkboxName) noexcept;
const char* getWindowButtons(const char* appName, const char* windowName) noexcept;
bool setCheckboxValue(const char* appName, const char* windowName, const char* checkboxName,
                      std::int32_t value) noexcept;
const char* getPopupMenuItems(const char* appName, const char* windowName, const char* popupName) noexcept;
const char* getWindowText(const char* appName, const char* windowName) noexcept;
bool windowExists(const char* appName, const char* windowName) noexcept;
const char* getWindowTitles(const char* appName) noexcept;
bool waitForWindow(const char* appName, const char* windowName, std::int32_t condition,
                   std::int32_t timeout) noexcept;
bool closeWindow(const char* appName, const char* windowName, std::int32_t retryTimeout) noexcept;

// Applications
const char* getFrontmostInfo() noexcept;
const char* getRunningApps() noexcept;
bool focusApp(const char* appName, const char* windowName, bool shouldSwitch, bool shouldLaunch,
              std::int32_t timeout) noexcept;
bool launchApp(const char* appName) noexcept;
bool isInTextField() noexcept;

// Memory
void freeString(const char* ptr) noexcept;

}  // namespace zeblo::capi

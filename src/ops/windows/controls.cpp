// Pressing buttons and checkboxes, writing a checkbox's value, and listing a
// window's buttons.
#include "ops/windows/window_ops.h"

namespace zeblo {

using platform::Element;

void WindowOps::clickButton(const std::string& appName, const std::string& windowName,
                            const std::string& buttonName) {
    const platform::RunningApp app = getApp(appName);
    const Element window = getWindow(app, windowName);
    const Element button = findElement(window, "AXButton", buttonName, 0);
    if (!button) throw WindowError::buttonNotFound(buttonName);

    platform::Platform& p = platform::current();
    if (p.performAction(button, "AXPress") == platform::kAXErrorSuccess) return;
    // Some buttons only answer to being picked.
    if (p.performAction(button, "AXPick") == platform::kAXErrorSuccess) return;
    throw WindowError::clickFailed();
}

void WindowOps::clickCheckbox(const std::string& appName, const std::string& windowName,
                              const std::string& checkboxName) {
    const platform::RunningApp app = getApp(appName);
    const Element window = getWindow(app, windowName);
    const Element checkbox = findElement(window, "AXCheckBox", checkboxName, 0);
    if (!checkbox) throw WindowError::checkboxNotFound(checkboxName);
    if (platform::current().performAction(checkbox, "AXPress") != platform::kAXErrorSuccess)
        throw WindowError::clickFailed();
}

void WindowOps::setCheckboxValue(const std::string& appName, const std::string& windowName,
                                 const std::string& checkboxName, std::int32_t value) {
    const platform::RunningApp app = getApp(appName);
    const Element window = getWindow(app, windowName);
    const Element checkbox = findElement(window, "AXCheckBox", checkboxName, 0);
    if (!checkbox) throw WindowError::checkboxNotFound(checkboxName);
    // Written as it stands, even when the checkbox already holds it.
    const platform::SetValue number = static_cast<std::int64_t>(value);
    if (platform::current().setAttributeValue(checkbox, "AXValue", number) != platform::kAXErrorSuccess)
        throw WindowError::clickFailed();
}

std::vector<std::string> WindowOps::getWindowButtons(const std::string& appName, const std::string& windowName) {
    platform::Platform& p = platform::current();
    p.log("getWindowButtons called: app=" + appName + ", window=" + windowName);
    const platform::RunningApp app = getApp(appName);
    p.log("Got app: " + app.localizedName.value_or("unknown"));
    p.log("About to call getWindow...");
    Element window;
    try {
        window = getWindow(app, windowName);
    } catch (const WindowError& e) {
        p.log("getWindow threw error: " + e.debugText());
        throw;
    }
    p.log("Successfully got window");
    p.log("Got window, collecting buttons...");
    std::vector<std::string> buttons = getAllButtons(window);
    p.log("Found " + std::to_string(buttons.size()) + " buttons");
    return buttons;
}

}  // namespace zeblo

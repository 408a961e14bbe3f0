// Pressing buttons and checkboxes, writing a checkbox's value, and listing a
// window's buttons.
#include "core/json_writer.h"
#include "core/unicode.h"
#include "ops/lookup.h"
#include "ops/windows/window_ops.h"
#include "platform/ax_names.h"

namespace zeblo {

using platform::Element;

void WindowOps::clickButton(const std::string& appName, const std::string& windowName,
                            const std::string& buttonName) {
    const Element button = findControl(appName, windowName, ax::kButtonRole, buttonName, &WindowError::buttonNotFound);

    platform::Platform& p = platform::current();
    if (lookup::performed(p.performAction(button, ax::kPressAction))) return;
    // Some buttons only answer to being picked.
    if (lookup::performed(p.performAction(button, ax::kPickAction))) return;
    throw WindowError::clickFailed();
}

void WindowOps::clickCheckbox(const std::string& appName, const std::string& windowName,
                              const std::string& checkboxName) {
    const Element checkbox =
        findControl(appName, windowName, ax::kCheckBoxRole, checkboxName, &WindowError::checkboxNotFound);
    if (!lookup::performed(platform::current().performAction(checkbox, ax::kPressAction)))
        throw WindowError::clickFailed();
}

void WindowOps::setCheckboxValue(const std::string& appName, const std::string& windowName,
                                 const std::string& checkboxName, std::int32_t value) {
    const Element checkbox =
        findControl(appName, windowName, ax::kCheckBoxRole, checkboxName, &WindowError::checkboxNotFound);
    // Written as it stands, even when the checkbox already holds it.
    const platform::SetValue number = static_cast<std::int64_t>(value);
    if (!lookup::performed(platform::current().setAttributeValue(checkbox, ax::kValueAttribute, number)))
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

std::string WindowOps::getWindowButtonsJSON(const std::string& appName, const std::string& windowName) {
    platform::Platform& p = platform::current();
    p.log("zeblo_get_window_buttons called");
    p.log("Calling WindowOps.getWindowButtons(app: '" + appName + "', window: '" + windowName + "')");
    try {
        const std::vector<std::string> buttons = getWindowButtons(appName, windowName);
        p.log("Successfully got " + std::to_string(buttons.size()) + " buttons, serializing to JSON");
        std::string text = json::stringArray(buttons);
        if (!text::isValidUtf8(text)) text = "[]";
        p.log("Returning JSON: " + text);
        return text;
    } catch (const WindowError& e) {
        p.log("WindowError caught: " + e.debugText());
        return json::errorObject(e.shortText());
    } catch (const Error& e) {
        p.log("Unexpected error: " + e.debugText());
        return json::errorObject(e.description());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {
        p.log(std::string("Unexpected error: ") + e.what());
        return json::errorObject(e.what());
    }
}

}  // namespace zeblo

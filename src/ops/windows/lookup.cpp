// Finding an application by name and one of its windows by title.
#include "ops/lookup.h"

#include <atomic>
#include <string>

#include "ops/windows/window_ops.h"
#include "platform/ax_names.h"

namespace zeblo {

using platform::Element;

namespace {
std::atomic<WindowOps::MissedControl> missedControl{nullptr};
}  // namespace

platform::RunningApp WindowOps::getApp(const std::string& appName) {
    std::optional<platform::RunningApp> app = lookup::findApp(appName, lookup::AppMatch::exactThenLoose);
    if (!app) throw appName.empty() ? WindowError::noFrontmostApp() : WindowError::appNotFound(appName);
    return std::move(*app);
}

Element WindowOps::getWindow(const platform::RunningApp& app, const std::string& windowName) {
    platform::Platform& p = platform::current();
    const std::string fallbackName = windowName.empty() ? std::string("<focused>") : windowName;

    p.log("getWindow: Getting windows for app with PID " + std::to_string(app.pid));
    const Element appElement = p.createApplicationElement(app.pid);

    p.log("getWindow: Calling AXUIElementCopyAttributeValue for kAXWindowsAttribute");
    auto windows = platform::asElementArray(p.copyAttributeValue(appElement, ax::kWindowsAttribute));
    p.log("getWindow: AXUIElementCopyAttributeValue result = " + std::to_string(windows.code));

    if (windows.status == platform::ReadStatus::failed) {
        // The error value is written as its numeric code.
        p.log("getWindow: Failed to get windows attribute, result = " + std::to_string(windows.code));
        if (windows.code == platform::kAXErrorCannotComplete) throw WindowError::windowUnanswered(fallbackName);
        throw WindowError::windowNotFound(fallbackName);
    }
    // A value that is not a list of elements counts as no list at all.
    if (!windows.ok()) {
        p.log("getWindow: windowsRef is nil");
        throw WindowError::windowNotFound(fallbackName);
    }

    p.log("getWindow: Got windowsRef, casting to CFArray");
    p.log("getWindow: Getting array count");
    const std::vector<Element>& list = windows.value;
    p.log("getWindow: Found " + std::to_string(list.size()) + " windows");
    if (list.empty()) {
        p.log("getWindow: No windows found");
        throw WindowError::windowNotFound(fallbackName);
    }

    if (!windowName.empty()) {
        p.log("getWindow: Searching for window named '" + windowName + "'");
        bool unanswered = false;  // a title that did not come may be the one
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (!list[i]) {
                p.log("getWindow: Window " + std::to_string(i) + " pointer is nil, skipping");
                continue;
            }
            auto title = platform::asString(p.copyAttributeValue(list[i], ax::kTitleAttribute));
            unanswered = unanswered || title.code == platform::kAXErrorCannotComplete;
            if (!title.ok()) continue;
            if (lookup::softMatch(title.value, windowName)) {
                p.log("getWindow: Found matching window '" + title.value + "'");
                return list[i];
            }
        }
        p.log("getWindow: No matching window found for '" + windowName + "'");
        if (unanswered) throw WindowError::windowUnanswered(windowName);
        throw WindowError::windowNotFound(windowName);
    }

    p.log("getWindow: Getting first window (focused)");
    if (!list[0]) {
        p.log("getWindow: First window pointer is nil");
        throw WindowError::windowNotFound("<focused>");
    }
    p.log("getWindow: Using Unmanaged to get window reference");
    p.log("getWindow: Returning first window");
    return list[0];
}

Element WindowOps::findWindow(const std::string& appName, const std::string& windowName) {
    return getWindow(getApp(appName), windowName);
}

Element WindowOps::findControl(const std::string& appName, const std::string& windowName, std::string_view role,
                               const std::string& name, WindowError (*missing)(std::string)) {
    windows::Trail inside;
    Element control = findElement(findWindow(appName, windowName), role, name, inside);
    if (!control) {
        if (const MissedControl hook = missedControl.load(std::memory_order_acquire)) {
            hook(appName, windowName, role, name);
        }
        throw missing(name);
    }
    return control;
}

void WindowOps::onMissedControl(MissedControl hook) noexcept { missedControl.store(hook, std::memory_order_release); }

WindowOps::Presence WindowOps::presence(const std::string& appName, const std::string& windowName) {
    try {
        (void)findWindow(appName, windowName);
        return Presence::found;
    } catch (const WindowError& e) {
        return e.unanswered() ? Presence::unknown : Presence::gone;
    }
}

}  // namespace zeblo

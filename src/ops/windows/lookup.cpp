// Finding an application by name and one of its windows by title.
#include <string>

#include "core/unicode.h"
#include "ops/windows/window_ops.h"

namespace zeblo {

using platform::Element;

bool WindowOps::softMatch(std::string_view candidate, std::string_view wanted) {
    return text::looseMatch(candidate, wanted);
}

platform::RunningApp WindowOps::getApp(const std::string& appName) {
    platform::Platform& p = platform::current();
    if (appName.empty()) {
        auto front = p.frontmostApplication();
        if (!front) throw WindowError::noFrontmostApp();
        return std::move(*front);
    }

    std::vector<platform::RunningApp> apps = p.runningApplications();
    // An exact name anywhere in the list wins over a loose match earlier in it.
    for (auto& app : apps) {
        if (app.localizedName && *app.localizedName == appName) return std::move(app);
    }
    for (auto& app : apps) {
        if (softMatch(app.localizedName.value_or(std::string()), appName)) return std::move(app);
    }
    throw WindowError::appNotFound(appName);
}

Element WindowOps::getWindow(const platform::RunningApp& app, const std::string& windowName) {
    platform::Platform& p = platform::current();
    const std::string fallbackName = windowName.empty() ? std::string("<focused>") : windowName;

    p.log("getWindow: Getting windows for app with PID " + std::to_string(app.pid));
    const Element appElement = p.createApplicationElement(app.pid);

    p.log("getWindow: Calling AXUIElementCopyAttributeValue for kAXWindowsAttribute");
    auto windows = platform::asElementArray(p.copyAttributeValue(appElement, "AXWindows"));
    p.log("getWindow: AXUIElementCopyAttributeValue result = " + std::to_string(windows.code));

    if (windows.status == platform::ReadStatus::failed) {
        // The error value is written as its numeric code.
        p.log("getWindow: Failed to get windows attribute, result = " + std::to_string(windows.code));
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
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (!list[i]) {
                p.log("getWindow: Window " + std::to_string(i) + " pointer is nil, skipping");
                continue;
            }
            auto title = platform::asString(p.copyAttributeValue(list[i], "AXTitle"));
            if (!title.ok()) continue;
            if (softMatch(title.value, windowName)) {
                p.log("getWindow: Found matching window '" + title.value + "'");
                return list[i];
            }
        }
        p.log("getWindow: No matching window found for '" + windowName + "'");
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

bool WindowOps::lookupSucceeds(const std::string& appName, const std::string& windowName) {
    try {
        const platform::RunningApp app = getApp(appName);
        (void)getWindow(app, windowName);
        return true;
    } catch (const WindowError&) {
        return false;
    }
}

}  // namespace zeblo

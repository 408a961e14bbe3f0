// Operations on applications: what is in front, what runs, bringing an
// application to the front and launching it, and whether the keyboard focus is
// in a text field. Stateless: every call asks the platform afresh.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ops/apps/app_error.h"
#include "ops/lookup.h"

namespace zeblo {

using lookup::FrontmostInfo;

class AppOps {
public:
    AppOps() = delete;

    // Throws AppError::noFrontmostApp when no application is in front.
    static FrontmostInfo getFrontmostInfo();

    // Names of the running applications in the workspace's order, nameless and
    // empty-named ones left out.
    static std::vector<std::string> getRunningApps();

    // Finds (and, when asked, launches) an application by loose name, activates
    // it when asked, then waits up to `timeout` milliseconds for a window whose
    // title matches `windowName` to come to the front.
    // Throws AppError::appNotFound or AppError::activationFailed.
    static void focusApp(const std::string& appName, const std::string& windowName, bool shouldSwitch,
                         bool shouldLaunch, std::int64_t timeout);

    // Only the launch request for `appName`: no lookup, no activation, no
    // waiting. Throws AppError::launchFailed when the workspace refuses.
    static void launchApp(const std::string& appName);

    // Whether the element with keyboard focus has a text role. Never throws.
    static bool isInTextField();
};

}  // namespace zeblo

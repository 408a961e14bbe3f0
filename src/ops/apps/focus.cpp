// Bringing an application to the front: choosing one running application by
// name, launching, activating, and the polling wait for a window to come to
// the front.
#include <optional>

#include "ops/apps/app_ops.h"
#include "platform/deadline.h"
#include "platform/platform.h"

namespace zeblo {
namespace {

// Pause after a launch request, before looking for the launched application.
constexpr double kLaunchPause = 0.5;
// Pause between two probes of the frontmost window.
constexpr double kPollInterval = 0.05;

}  // namespace

void AppOps::focusApp(const std::string& appName, const std::string& windowName, bool shouldSwitch,
                      bool shouldLaunch, std::int64_t timeout) {
    if (appName.empty()) return;
    platform::Platform& p = platform::current();

    std::optional<platform::RunningApp> app = lookup::findApp(appName, lookup::AppMatch::looseVisible);
    if (!app) {
        if (!shouldLaunch) throw AppError::appNotFound(appName);
        // The host's text goes to the workspace unchanged; a refusal means
        // the application cannot be had, which the caller hears as not found.
        if (!p.launchApplication(appName)) throw AppError::appNotFound(appName);
        p.sleep(kLaunchPause);
        // A freshly launched application may still be hidden or not yet
        // regular: any state qualifies now.
        app = lookup::findApp(appName, lookup::AppMatch::loose);
        if (!app) throw AppError::appNotFound(appName);
    }

    if (shouldSwitch && !p.activateApplication(*app, platform::kActivateIgnoringOtherApps)) {
        throw AppError::activationFailed();
    }
    if (windowName.empty() || timeout < 1) return;

    // Probe first, then pause; time is checked before every probe, so no
    // probe follows the pause on which the limit was reached. A window that
    // never comes is not an error.
    const platform::Deadline deadline(timeout);
    while (!deadline.passed()) {
        // With nothing in front at the moment, the wait goes on.
        const std::optional<FrontmostInfo> front = lookup::frontmostInfo();
        if (front && lookup::softMatch(front->appName, appName) &&
            lookup::softMatch(front->windowTitle, windowName)) {
            return;
        }
        p.sleep(kPollInterval);
    }
}

void AppOps::launchApp(const std::string& appName) {
    if (!platform::current().launchApplication(appName)) throw AppError::launchFailed();
}

}  // namespace zeblo

// Bringing an application to the front: the loose name match, the two ways of
// choosing one running application by name, launching, activating, and the
// polling wait for a window to come to the front.
#include <optional>

#include "ops/apps/app_ops.h"
#include "platform/deadline.h"
#include "platform/platform.h"
#include "core/unicode.h"

namespace zeblo {
namespace {

// Pause after a launch request, before looking for the launched application.
constexpr double kLaunchPause = 0.5;
// Pause between two probes of the frontmost window.
constexpr double kPollInterval = 0.05;

using Matcher = bool (*)(std::string_view candidate, std::string_view wanted);

// Which running applications a choice considers.
enum class Choice {
    visible,  // only visible applications of the regular activation policy
    plain,    // any application, hidden or in the background
};

// The first running application, in the workspace's order, whose name matches
// `name` loosely (and, for the visible choice, that is shown and regular). A
// loose match early in the list wins over an exact match later in it.
std::optional<platform::RunningApp> chooseApp(std::string_view name, Choice choice, Matcher matches) {
    for (auto& app : platform::current().runningApplications()) {
        if (choice == Choice::visible && (app.hidden || app.activationPolicy != 0)) continue;
        const std::string localized = app.localizedName.value_or(std::string());
        if (matches(localized, name)) return std::move(app);
    }
    return std::nullopt;
}

}  // namespace

bool AppOps::softMatch(std::string_view candidate, std::string_view wanted) {
    return text::looseMatch(candidate, wanted);
}

void AppOps::focusApp(const std::string& appName, const std::string& windowName, bool shouldSwitch,
                      bool shouldLaunch, std::int64_t timeout) {
    if (appName.empty()) return;
    platform::Platform& p = platform::current();

    std::optional<platform::RunningApp> app = chooseApp(appName, Choice::visible, &softMatch);
    if (!app) {
        if (!shouldLaunch) throw AppError::appNotFound(appName);
        // The host's text goes to the workspace unchanged; a refusal means
        // the application cannot be had, which the caller hears as not found.
        if (!p.launchApplication(appName)) throw AppError::appNotFound(appName);
        p.sleep(kLaunchPause);
        // A freshly launched application may still be hidden or not yet
        // regular: any state qualifies now.
        app = chooseApp(appName, Choice::plain, &softMatch);
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
        try {
            const FrontmostInfo front = getFrontmostInfo();
            if (softMatch(front.appName, appName) && softMatch(front.windowTitle, windowName)) return;
        } catch (const Error&) {
            // Nothing in front at the moment: keep waiting.
        }
        p.sleep(kPollInterval);
    }
}

}  // namespace zeblo

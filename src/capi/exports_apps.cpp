// Exported functions of the applications area and their bodies.
#include "capi/bodies.h"
#include "capi/marshal.h"
#include "core/json_writer.h"
#include "ops/apps/app_ops.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {

const char* getFrontmostInfo() noexcept {
    return runJson("{}", false, [] {
        const FrontmostInfo info = AppOps::getFrontmostInfo();
        return json::stringObject({{"app", info.appName}, {"window", info.windowTitle}});
    });
}

const char* getRunningApps() noexcept {
    return runJson("[]", true, [] { return json::stringArray(AppOps::getRunningApps()); });
}

bool focusApp(const char* appName, const char* windowName, bool shouldSwitch, bool shouldLaunch,
              std::int32_t timeout) noexcept {
    return runLogged("zeblo_focus_app", [&] {
        AppOps::focusApp(decodeString(appName), decodeString(windowName), shouldSwitch, shouldLaunch, timeout);
    });
}

bool launchApp(const char* appName) noexcept {
    return runLogged("zeblo_launch_app", [&] {
        AppOps::launchApp(decodeString(appName));
    });
}

bool isInTextField() noexcept {
    return runQuiet([] { return AppOps::isInTextField(); });
}

}  // namespace zeblo::capi

extern "C" {

const char* zeblo_get_frontmost_info(void) { return zeblo::capi::getFrontmostInfo(); }
const char* zeblo_get_running_apps(void) { return zeblo::capi::getRunningApps(); }

bool zeblo_focus_app(const char* appName, const char* windowName, bool shouldSwitch, bool shouldLaunch,
                     int32_t timeout) {
    return zeblo::capi::focusApp(appName, windowName, shouldSwitch, shouldLaunch, timeout) & 1;
}
bool zeblo_launch_app(const char* appName) { return zeblo::capi::launchApp(appName) & 1; }
bool zeblo_is_in_text_field(void) { return zeblo::capi::isInTextField() & 1; }

}  // extern "C"

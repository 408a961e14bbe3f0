// Exported functions of the applications area and their bodies.
#include "apps/app_ops.h"
#include "boundary/bodies.h"
#include "boundary/json_writer.h"
#include "boundary/marshal.h"
#include "zeblo/zeblo.h"

namespace zeblo::boundary {

const char* getFrontmostInfo() noexcept {
    return runJson("{}", false, [] {
        const FrontmostInfo info = AppOps::getFrontmostInfo();
        return json::stringObject({{"app", info.appName}, {"window", info.windowTitle}});
    });
}

const char* getRunningApps() noexcept {
    return runJson("[]", true, [] { return json::stringArray(AppOps::getRunningApps()); });
}

}  // namespace zeblo::boundary

extern "C" {

const char* zeblo_get_frontmost_info(void) { return zeblo::boundary::getFrontmostInfo(); }
const char* zeblo_get_running_apps(void) { return zeblo::boundary::getRunningApps(); }

}  // extern "C"

#include "ops/apps/app_ops.h"
#include "platform/platform.h"

namespace zeblo {

FrontmostInfo AppOps::getFrontmostInfo() {
    std::optional<FrontmostInfo> info = lookup::frontmostInfo();
    if (!info) throw AppError::noFrontmostApp();
    return std::move(*info);
}

std::vector<std::string> AppOps::getRunningApps() {
    std::vector<std::string> names;
    for (auto& app : platform::current().runningApplications()) {
        if (app.localizedName && !app.localizedName->empty()) names.push_back(std::move(*app.localizedName));
    }
    return names;
}

}  // namespace zeblo

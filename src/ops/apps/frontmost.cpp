#include "ops/apps/app_ops.h"
#include "platform/platform.h"

namespace zeblo {

FrontmostInfo AppOps::getFrontmostInfo() {
    platform::Platform& p = platform::current();
    const auto app = p.frontmostApplication();
    if (!app) throw AppError::noFrontmostApp();

    FrontmostInfo info;
    info.appName = app->localizedName.value_or(std::string());

    const platform::Element element = p.createApplicationElement(app->pid);
    auto window = platform::asElement(p.copyAttributeValue(element, "AXFocusedWindow"));
    if (window.ok() && window.value) {
        auto title = platform::asString(p.copyAttributeValue(window.value, "AXTitle"));
        if (title.ok()) info.windowTitle = std::move(title.value);
    }
    return info;
}

std::vector<std::string> AppOps::getRunningApps() {
    std::vector<std::string> names;
    for (auto& app : platform::current().runningApplications()) {
        if (app.localizedName && !app.localizedName->empty()) names.push_back(std::move(*app.localizedName));
    }
    return names;
}

}  // namespace zeblo

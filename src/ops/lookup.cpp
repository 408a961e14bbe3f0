#include "ops/lookup.h"

#include "core/unicode.h"
#include "platform/ax_names.h"

namespace zeblo::lookup {

bool softMatch(std::string_view candidate, std::string_view wanted) { return text::looseMatch(candidate, wanted); }

std::optional<platform::RunningApp> findApp(std::string_view name, AppMatch match) {
    platform::Platform& p = platform::current();
    if (name.empty()) return p.frontmostApplication();

    std::vector<platform::RunningApp> apps = p.runningApplications();
    const auto first = [&](auto&& accepts) -> std::optional<platform::RunningApp> {
        for (platform::RunningApp& app : apps) {
            if (accepts(app)) return std::move(app);
        }
        return std::nullopt;
    };
    const auto loosely = [&](const platform::RunningApp& app) {
        return softMatch(app.localizedName.value_or(std::string()), name);
    };
    switch (match) {
        case AppMatch::exact:
            return first([&](const platform::RunningApp& app) {
                return app.localizedName && text::canonicallyEqual(*app.localizedName, name);
            });
        case AppMatch::exactThenLoose:
            // An identical name anywhere in the list wins over a loose match
            // earlier in it.
            if (auto app = first([&](const platform::RunningApp& a) { return a.localizedName == name; })) return app;
            return first(loosely);
        case AppMatch::loose:
            return first(loosely);
        case AppMatch::looseVisible:
            // A loose match early in the list wins over an exact match later.
            return first([&](const platform::RunningApp& app) {
                return !app.hidden && app.activationPolicy == 0 && loosely(app);
            });
    }
    return std::nullopt;
}

std::optional<FrontmostInfo> frontmostInfo() {
    platform::Platform& p = platform::current();
    const auto app = p.frontmostApplication();
    if (!app) return std::nullopt;

    FrontmostInfo info;
    info.appName = app->localizedName.value_or(std::string());
    const platform::Element element = p.createApplicationElement(app->pid);
    auto window = platform::asElement(p.copyAttributeValue(element, ax::kFocusedWindowAttribute));
    if (window.ok() && window.value) {
        auto title = platform::asString(p.copyAttributeValue(window.value, ax::kTitleAttribute));
        if (title.ok()) info.windowTitle = std::move(title.value);
    }
    return info;
}

FocusedElement focusedElement() {
    platform::Platform& p = platform::current();
    const platform::Element systemWide = p.createSystemWideElement();
    platform::AttributeRead read = p.copyAttributeValue(systemWide, ax::kFocusedUIElementAttribute);
    FocusedElement out;
    out.code = read.code;
    platform::Read<platform::Element> element = platform::asElement(std::move(read));
    if (element.ok()) out.element = std::move(element.value);
    return out;
}

}  // namespace zeblo::lookup

#include "ops/menus/menu_ops.h"

#include "core/json_writer.h"
#include "core/unicode.h"
#include "ops/lookup.h"
#include "ops/menus/menu_item.h"
#include "ops/menus/menu_reads.h"
#include "platform/ax_names.h"

namespace zeblo {

using platform::Element;
using platform::Platform;

MenuOps::Target MenuOps::resolveApplication(Platform& p, const std::string& appName) {
    std::optional<platform::RunningApp> app = lookup::findApp(appName, lookup::AppMatch::exact);
    if (!app) throw appName.empty() ? MenuError::noFrontmostApp() : MenuError::appNotFound(appName);
    Target target;
    target.pid = app->pid;
    target.localizedName = std::move(app->localizedName);
    const Element application = p.createApplicationElement(target.pid);
    auto menuBar = platform::asElement(p.copyAttributeValue(application, ax::kMenuBarAttribute));
    if (!menuBar.ok()) throw MenuError::menuBarNotFound();
    target.menuBar = std::move(menuBar.value);
    return target;
}

std::string MenuOps::getAppMenusJSON(const std::string& appName) {
    Platform& p = platform::current();
    Target target = resolveApplication(p, appName);
    const std::string name = !appName.empty() ? appName : target.localizedName.value_or("Unknown");

    auto items = menus::elementList(p.copyAttributeValue(target.menuBar, ax::kChildrenAttribute));
    if (!items) {
        std::string out = "{\"app\": \"";
        json::appendEscaped(out, name);
        out += "\", \"menus\": []}";
        return out;
    }

    menus::leaveOutLoops(*items, {target.menuBar});
    std::vector<MenuItem> menus;
    menus.reserve(items->size());
    for (Element& item : *items) {
        menus.emplace_back(item, target.pid, std::vector<std::string>{}, target.menuBar);
        item = Element{};
    }
    target.menuBar = Element{};

    return encodeMenuBar(name, menus);
}

Element MenuOps::findChildByTitle(const Element& element, const std::string& title) {
    Platform& p = platform::current();
    auto titled = [&](const Element& candidate) {
        auto t = platform::asString(p.copyAttributeValue(candidate, ax::kTitleAttribute));
        return t.ok() && text::canonicallyEqual(t.value, title);
    };
    auto firstTitled = [&](std::vector<Element>& list) {
        for (Element& candidate : list) {
            if (titled(candidate)) return std::move(candidate);
        }
        return Element{};
    };

    auto children = platform::asElementArray(p.copyAttributeValue(element, ax::kChildrenAttribute));
    if (!children.ok()) return Element{};
    if (children.value.size() == 1) {
        const Element& only = children.value.front();
        const std::string onlyTitle = menus::textValue(p.copyAttributeValue(only, ax::kTitleAttribute)).value_or("");
        if (menus::isContainerTitle(onlyTitle)) {
            p.log("Skipping container layer, searching in its children");
            auto inner = platform::asElementArray(p.copyAttributeValue(only, ax::kChildrenAttribute));
            if (!inner.ok()) return Element{};
            return firstTitled(inner.value);
        }
    }
    return firstTitled(children.value);
}

Element MenuOps::navigateToMenuItem(const std::string& appName, const std::vector<std::string>& menuPath) {
    if (menuPath.empty()) throw MenuError::emptyMenuPath();
    Platform& p = platform::current();
    Element current = resolveApplication(p, appName).menuBar;
    for (const std::string& title : menuPath) {
        Element next = findChildByTitle(current, title);
        if (!next) throw MenuError::menuItemNotFound(title);
        current = std::move(next);
    }
    return current;
}

void MenuOps::executeMenuItem(const Element& element) {
    Platform& p = platform::current();
    if (lookup::performed(p.performAction(element, ax::kPressAction))) return;
    if (lookup::performed(p.performAction(element, ax::kPickAction))) return;
    const platform::NamesRead actions = p.copyActionNames(element);
    if (actions.code == platform::kAXErrorSuccess && actions.names) {
        p.log("Menu item execute failed. Available actions (" + std::to_string(actions.names->size()) + "):");
        for (const std::string& name : *actions.names) p.log("  " + name);
    }
    throw MenuError::menuClickFailed();
}

void MenuOps::menuClick(const std::string& appName, const std::vector<std::string>& menuPath) {
    const Element item = navigateToMenuItem(appName, menuPath);
    executeMenuItem(item);
}

bool MenuOps::menuItemExists(const std::string& appName, const std::vector<std::string>& menuPath) {
    try {
        return static_cast<bool>(navigateToMenuItem(appName, menuPath));
    } catch (const MenuError&) {
        return false;
    }
}

bool MenuOps::menuItemEnabled(const std::string& appName, const std::vector<std::string>& menuPath) {
    try {
        const Element item = navigateToMenuItem(appName, menuPath);
        const auto enabled = platform::asBool(platform::current().copyAttributeValue(item, ax::kEnabledAttribute));
        return enabled.ok() && enabled.value;
    } catch (const MenuError&) {
        return false;
    }
}

}  // namespace zeblo

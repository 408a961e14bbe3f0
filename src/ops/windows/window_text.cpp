// A window's text as labelled lines, and the items of a popup button's menu.
#include "ops/windows/element_search.h"
#include "ops/windows/text_lines.h"
#include "ops/windows/window_ops.h"
#include "platform/ax_names.h"

namespace zeblo {

using platform::Element;

void WindowOps::collectText(const Element& from, TextLines& into, windows::Trail& inside) {
    if (inside.size() > kMaxDepth || into.size() > kMaxResults - 1) return;

    const std::string role = windows::roleOf(from).value_or("Unknown");
    // Values are always shown; a title or description is left out when any
    // line collected so far (for the whole window) already contains it.
    const std::string value = windows::readString(from, ax::kValueAttribute);
    if (!value.empty()) into.append("[" + role + "] " + value);
    const std::string title = windows::readString(from, ax::kTitleAttribute);
    if (!title.empty() && !into.anyContains(title)) into.append("[" + role + " Title] " + title);
    const std::string description = windows::readString(from, ax::kDescriptionAttribute);
    if (!description.empty() && !into.anyContains(description))
        into.append("[" + role + " Description] " + description);

    const std::vector<Element> children = windows::childrenOf(from);
    inside.push_back(from);
    for (const Element& child : children) {
        if (child && !windows::leadsBack(child, inside)) collectText(child, into, inside);
    }
    inside.pop_back();
}

std::vector<std::string> WindowOps::getMenuItems(const Element& menu) {
    std::vector<std::string> items;
    for (const Element& child : windows::childrenOf(menu)) {
        if (!child) continue;
        std::string title = windows::readString(child, ax::kTitleAttribute);
        if (!title.empty()) items.push_back(std::move(title));
    }
    return items;
}

std::vector<std::string> WindowOps::getWindowText(const std::string& appName, const std::string& windowName) {
    TextLines lines;
    windows::Trail inside;
    collectText(findWindow(appName, windowName), lines, inside);
    return lines.take();
}

std::vector<std::string> WindowOps::getPopupMenuItems(const std::string& appName, const std::string& windowName,
                                                      const std::string& popupName) {
    // A missing popup is reported as a missing button.
    const Element popup =
        findControl(appName, windowName, ax::kPopUpButtonRole, popupName, &WindowError::buttonNotFound);

    platform::Platform& p = platform::current();
    // Opening the menu; whether the press worked shows in the menu read below.
    (void)p.performAction(popup, ax::kPressAction);
    p.sleep(0.05);

    // The menu is exposed as the popup's "AXMenu" attribute, or only as a
    // child of role "AXMenu". The opened menu is left open.
    auto menu = platform::asElement(p.copyAttributeValue(popup, ax::kMenuAttribute));
    if (menu.ok()) return getMenuItems(menu.value);
    for (const Element& child : windows::childrenOf(popup)) {
        if (child && windows::roleOf(child) == ax::kMenuRole) return getMenuItems(child);
    }
    return {};
}

}  // namespace zeblo

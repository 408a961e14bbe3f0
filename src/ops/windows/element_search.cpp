// The bounded depth-first walks that find a control by role and title and
// collect the titles of all controls of a role. Depth is bounded by
// kMaxDepth, so the walks recurse on the machine stack at most 50 levels; a
// child that leads back to an element the walk is inside is not entered.
#include "ops/windows/element_search.h"

#include "ops/lookup.h"
#include "ops/windows/window_ops.h"
#include "platform/ax_names.h"

namespace zeblo {

using platform::Element;

namespace windows {

std::string readString(const Element& element, std::string_view attribute) {
    auto read = platform::asString(platform::current().copyAttributeValue(element, attribute));
    return read.ok() ? std::move(read.value) : std::string();
}

std::optional<std::string> roleOf(const Element& element) {
    auto read = platform::asString(platform::current().copyAttributeValue(element, ax::kRoleAttribute));
    if (!read.ok()) return std::nullopt;
    return std::move(read.value);
}

std::vector<Element> childrenOf(const Element& element) {
    auto read = platform::asElementArray(platform::current().copyAttributeValue(element, ax::kChildrenAttribute));
    // An unreadable, absent or wrongly typed list, and a list too long to
    // enter, all count as no children.
    if (!read.ok() || read.value.size() > WindowOps::kMaxChildren) return {};
    return std::move(read.value);
}

bool leadsBack(const Element& child, const Trail& inside) {
    platform::Platform& p = platform::current();
    for (const Element& above : inside) {
        if (p.sameElement(child, above)) return true;
    }
    return false;
}

}  // namespace windows

Element WindowOps::findElement(const Element& in, std::string_view role, std::string_view name,
                               windows::Trail& inside) {
    if (inside.size() > kMaxDepth) return {};
    if (windows::roleOf(in) == role) {
        auto title = platform::asString(platform::current().copyAttributeValue(in, ax::kTitleAttribute));
        if (title.ok() && lookup::softMatch(title.value, name)) return in;
    }
    const std::vector<Element> children = windows::childrenOf(in);
    Element found;
    inside.push_back(in);
    for (const Element& child : children) {
        if (!child || windows::leadsBack(child, inside)) continue;
        found = findElement(child, role, name, inside);
        if (found) break;
    }
    inside.pop_back();
    return found;
}

void WindowOps::collectElements(const Element& in, std::string_view role, std::vector<std::string>& into,
                                windows::Trail& inside) {
    platform::Platform& p = platform::current();
    if (inside.size() > kMaxDepth) {
        p.log("collectElements: Hit max recursion depth");
        return;
    }
    if (into.size() > kMaxResults - 1) {
        p.log("collectElements: Hit max results count");
        return;
    }
    if (windows::roleOf(in) == role) {
        std::string title = windows::readString(in, ax::kTitleAttribute);
        if (!title.empty()) {
            p.log("collectElements: Found button '" + title + "'");
            into.push_back(std::move(title));
        }
    }
    const std::vector<Element> children = windows::childrenOf(in);
    inside.push_back(in);
    for (const Element& child : children) {
        if (child && !windows::leadsBack(child, inside)) collectElements(child, role, into, inside);
    }
    inside.pop_back();
}

std::vector<std::string> WindowOps::getAllButtons(const Element& window) {
    platform::Platform& p = platform::current();
    p.log("getAllButtons: Starting collection");
    std::vector<std::string> buttons;
    p.log("getAllButtons: Calling collectElements");
    windows::Trail inside;
    collectElements(window, ax::kButtonRole, buttons, inside);
    p.log("getAllButtons: Collection complete, found " + std::to_string(buttons.size()) + " buttons");
    return buttons;
}

}  // namespace zeblo

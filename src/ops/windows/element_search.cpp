// The bounded depth-first walks that find a control by role and title and
// collect the titles of all controls of a role. Depth is bounded by
// kMaxDepth, so the walks recurse on the machine stack at most 50 levels.
#include "ops/windows/element_search.h"

#include "ops/lookup.h"
#include "ops/windows/window_ops.h"

namespace zeblo {

using platform::Element;

namespace windows {

std::string readString(const Element& element, std::string_view attribute) {
    auto read = platform::asString(platform::current().copyAttributeValue(element, attribute));
    return read.ok() ? std::move(read.value) : std::string();
}

std::optional<std::string> roleOf(const Element& element) {
    auto read = platform::asString(platform::current().copyAttributeValue(element, "AXRole"));
    if (!read.ok()) return std::nullopt;
    return std::move(read.value);
}

std::vector<Element> childrenOf(const Element& element) {
    auto read = platform::asElementArray(platform::current().copyAttributeValue(element, "AXChildren"));
    // An unreadable, absent or wrongly typed list, and a list too long to
    // enter, all count as no children.
    if (!read.ok() || read.value.empty() || read.value.size() > WindowOps::kMaxChildren) return {};
    return std::move(read.value);
}

}  // namespace windows

Element WindowOps::findElement(const Element& in, std::string_view role, std::string_view name, int depth) {
    if (depth > kMaxDepth) return {};
    if (windows::roleOf(in) == role) {
        auto title = platform::asString(platform::current().copyAttributeValue(in, "AXTitle"));
        if (title.ok() && lookup::softMatch(title.value, name)) return in;
    }
    for (const Element& child : windows::childrenOf(in)) {
        if (!child) continue;
        if (Element found = findElement(child, role, name, depth + 1)) return found;
    }
    return {};
}

void WindowOps::collectElements(const Element& in, std::string_view role, std::vector<std::string>& into,
                                int depth) {
    platform::Platform& p = platform::current();
    if (depth > kMaxDepth) {
        p.log("collectElements: Hit max recursion depth");
        return;
    }
    if (into.size() > kMaxResults - 1) {
        p.log("collectElements: Hit max results count");
        return;
    }
    if (windows::roleOf(in) == role) {
        std::string title = windows::readString(in, "AXTitle");
        if (!title.empty()) {
            p.log("collectElements: Found button '" + title + "'");
            into.push_back(std::move(title));
        }
    }
    for (const Element& child : windows::childrenOf(in)) {
        if (child) collectElements(child, role, into, depth + 1);
    }
}

std::vector<std::string> WindowOps::getAllButtons(const Element& window) {
    platform::Platform& p = platform::current();
    p.log("getAllButtons: Starting collection");
    std::vector<std::string> buttons;
    p.log("getAllButtons: Calling collectElements");
    collectElements(window, "AXButton", buttons, 0);
    p.log("getAllButtons: Collection complete, found " + std::to_string(buttons.size()) + " buttons");
    return buttons;
}

}  // namespace zeblo

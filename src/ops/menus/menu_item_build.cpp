// Building a menu record from an application's accessibility elements.
//
// Each item is read in a fixed order (title, enabled, mark, key equivalent,
// modifiers, attribute names, children) and its submenu is built before the
// next sibling is read: a pre-order walk, kept on an explicit stack so that
// the machine stack does not grow with the depth of the menu tree. An
// element's handle is released as soon as its item has been read; what stays
// alive is the list of not-yet-read siblings at each open level.
#include <string_view>

#include "core/unicode.h"
#include "ops/menus/menu_item.h"
#include "ops/menus/menu_reads.h"

namespace zeblo {

namespace {

using platform::Element;
using platform::Platform;

bool isAscii(std::string_view s) {
    for (char c : s) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Whether the lower-cased ASCII text `s` holds `word` (lower case) at `at`.
bool asciiWordAt(std::string_view s, std::size_t at, std::string_view word) {
    if (s.size() - at < word.size()) return false;
    for (std::size_t k = 0; k < word.size(); ++k) {
        if (asciiLower(s[at + k]) != word[k]) return false;
    }
    return true;
}

// Whether an attribute name, lower-cased, contains "command" or "action".
// Full lower-casing maps ASCII letters to ASCII letters and nothing else, so
// an ASCII name is searched in place; any other name is lower-cased first.
bool mentionsCommandOrAction(std::string_view name) {
    if (!isAscii(name)) {
        const std::string lower = text::toLower(name);
        return lower.find("command") != std::string::npos || lower.find("action") != std::string::npos;
    }
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = asciiLower(name[i]);
        if ((c == 'c' && asciiWordAt(name, i, "command")) || (c == 'a' && asciiWordAt(name, i, "action"))) {
            return true;
        }
    }
    return false;
}

// Logs the attributes of an item that look like they carry its command or
// action; changes nothing.
void logAttributeDiagnostics(Platform& p, const Element& element, const std::string& title) {
    platform::NamesRead names = p.copyAttributeNames(element);
    if (names.code != platform::kAXErrorSuccess || !names.names) return;
    for (const std::string& name : *names.names) {
        if (!mentionsCommandOrAction(name)) continue;
        std::string line = "MenuItem '";
        line += title;
        line += "' has attribute: ";
        line += name;
        p.log(line);
    }
}

// The elements the item's child records are built from; empty when the item
// has no children. A single untitled child is the container layer between an
// item and its submenu's items: its own children are taken instead, unless
// they cannot be read, in which case the container is listed itself.
std::vector<Element> childElements(Platform& p, const Element& element) {
    auto list = menus::elementList(p.copyAttributeValue(element, "AXChildren"));
    if (!list || list->empty()) return {};
    if (list->size() == 1) {
        const Element& only = list->front();
        const std::string title = menus::textValue(p.copyAttributeValue(only, "AXTitle")).value_or("");
        if (menus::isContainerTitle(title)) {
            auto inner = platform::asElementArray(p.copyAttributeValue(only, "AXChildren"));
            if (inner.ok()) return std::move(inner.value);
        }
    }
    return std::move(*list);
}

// Reads one item's own fields into `item` and returns its child elements.
std::vector<Element> readItem(Platform& p, const Element& element, MenuItem& item) {
    item.title = menus::textValue(p.copyAttributeValue(element, "AXTitle")).value_or(MenuItem::kNoTitle);

    const auto enabled = platform::asBool(p.copyAttributeValue(element, "AXEnabled"));
    item.enabled = enabled.ok() ? enabled.value : true;

    const auto mark = platform::asString(p.copyAttributeValue(element, "AXMenuItemMarkChar"));
    item.checked = mark.ok() && !mark.value.empty();

    auto cmdChar = platform::asString(p.copyAttributeValue(element, "AXMenuItemCmdChar"));
    if (cmdChar.ok()) item.cmdChar = std::move(cmdChar.value);

    const auto modifiers = platform::asInteger(p.copyAttributeValue(element, "AXMenuItemCmdModifiers"));
    if (modifiers.ok()) item.cmdModifiers = modifiers.value;

    logAttributeDiagnostics(p, element, item.title);
    return childElements(p, element);
}

}  // namespace

MenuItem::MenuItem(const platform::Element& element, std::int32_t pid_, std::vector<std::string> path_)
    : path(std::move(path_)), pid(pid_) {
    Platform& p = platform::current();

    // One frame per open submenu: the record whose children are being built
    // and the elements still to read.
    struct Frame {
        MenuItem* parent;
        std::vector<Element> elements;
        std::size_t next = 0;
    };
    std::vector<Frame> open;
    auto openSubmenu = [&](MenuItem& item, std::vector<Element> elements) {
        if (elements.empty()) return;
        item.children.emplace();
        item.children->reserve(elements.size());  // keeps `parent` pointers valid
        open.push_back({&item, std::move(elements)});
    };

    openSubmenu(*this, readItem(p, element, *this));
    while (!open.empty()) {
        Frame& top = open.back();
        if (top.next == top.elements.size()) {
            open.pop_back();
            continue;
        }
        const Element childElement = std::move(top.elements[top.next++]);  // released after this step
        MenuItem& parent = *top.parent;
        MenuItem& child = parent.children->emplace_back();
        child.pid = pid;
        child.path.reserve(parent.path.size() + 1);
        child.path = parent.path;
        child.path.push_back(parent.title);
        openSubmenu(child, readItem(p, childElement, child));  // may push: `top` is not used afterwards
    }
}

}  // namespace zeblo

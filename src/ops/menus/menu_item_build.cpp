// Building a menu record from an application's accessibility elements.
//
// Each item is read in a fixed order (title, enabled, mark, key equivalent,
// modifiers, attribute names, children) and its submenu is built before the
// next sibling is read: a pre-order walk, kept on an explicit stack so that
// the machine stack does not grow with the depth of the menu tree. What stays
// alive is, at each open level, the item's element (with the container looked
// through, if any) and the list of its not-yet-read children; a child that is
// one of the open levels' elements leads back up and is left out, so a tree
// that loops back is read as if the looping entry were not there.
#include <string_view>

#include "core/unicode.h"
#include "ops/menus/menu_item.h"
#include "ops/menus/menu_reads.h"
#include "platform/ax_names.h"

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
// item and its submenu's items: its own children are taken instead (and the
// container joins `inside`), unless they cannot be read, in which case the
// container is listed itself. Entries that are elements of `inside` are left
// out first.
std::vector<Element> childElements(Platform& p, const Element& element, std::vector<Element>& inside) {
    auto list = menus::elementList(p.copyAttributeValue(element, ax::kChildrenAttribute));
    if (!list) return {};
    menus::leaveOutLoops(*list, inside);
    if (list->size() == 1) {
        const Element& only = list->front();
        const std::string title = menus::textValue(p.copyAttributeValue(only, ax::kTitleAttribute)).value_or("");
        if (menus::isContainerTitle(title)) {
            auto inner = platform::asElementArray(p.copyAttributeValue(only, ax::kChildrenAttribute));
            if (inner.ok()) {
                inside.push_back(only);
                menus::leaveOutLoops(inner.value, inside);
                return std::move(inner.value);
            }
        }
    }
    return std::move(*list);
}

// Reads one item's own fields into `item` and returns its child elements;
// `inside` holds the element and what the walk is inside.
std::vector<Element> readItem(Platform& p, const Element& element, MenuItem& item, std::vector<Element>& inside) {
    item.title = menus::textValue(p.copyAttributeValue(element, ax::kTitleAttribute)).value_or(MenuItem::kNoTitle);

    const auto enabled = platform::asBool(p.copyAttributeValue(element, ax::kEnabledAttribute));
    item.enabled = enabled.ok() ? enabled.value : true;

    const auto mark = platform::asString(p.copyAttributeValue(element, ax::kMenuItemMarkCharAttribute));
    item.checked = mark.ok() && !mark.value.empty();

    auto cmdChar = platform::asString(p.copyAttributeValue(element, ax::kMenuItemCmdCharAttribute));
    if (cmdChar.ok()) item.cmdChar = std::move(cmdChar.value);

    const auto modifiers = platform::asInteger(p.copyAttributeValue(element, ax::kMenuItemCmdModifiersAttribute));
    if (modifiers.ok()) item.cmdModifiers = modifiers.value;

    logAttributeDiagnostics(p, element, item.title);
    return childElements(p, element, inside);
}

}  // namespace

MenuItem::MenuItem(const platform::Element& element, std::int32_t pid_, std::vector<std::string> path_,
                   const platform::Element& listedUnder)
    : path(std::move(path_)), pid(pid_) {
    Platform& p = platform::current();

    // The elements the walk is inside, outermost first: `listedUnder`, then
    // for each open submenu its item and the container looked through.
    std::vector<Element> inside;
    if (listedUnder) inside.push_back(listedUnder);

    // One frame per open submenu: the record whose children are being built,
    // the elements still to read, and where its entries of `inside` start.
    struct Frame {
        MenuItem* parent;
        std::vector<Element> elements;
        std::size_t next = 0;
        std::size_t insideFrom = 0;
    };
    std::vector<Frame> open;
    // Reads `item` from `e` and opens its submenu, if it has one.
    auto visit = [&](const Element& e, MenuItem& item) {
        const std::size_t from = inside.size();
        inside.push_back(e);
        std::vector<Element> elements = readItem(p, e, item, inside);
        if (elements.empty()) {
            inside.resize(from);
            return;
        }
        item.children.emplace();
        item.children->reserve(elements.size());  // keeps `parent` pointers valid
        open.push_back({&item, std::move(elements), 0, from});
    };

    visit(element, *this);
    while (!open.empty()) {
        Frame& top = open.back();
        if (top.next == top.elements.size()) {
            inside.resize(top.insideFrom);
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
        visit(childElement, child);  // may push: `top` is not used afterwards
    }
}

}  // namespace zeblo

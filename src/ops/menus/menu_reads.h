// Reads shared by the menu record and the menu operations, for the places
// where only whether a value came back counts and the result code does not.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/platform.h"

namespace zeblo::menus {

// The text value of a read, whatever its result code; nothing when the value
// is missing or not a text.
inline std::optional<std::string> textValue(platform::AttributeRead&& read) {
    if (auto* s = std::get_if<std::string>(&read.value)) return std::move(*s);
    return std::nullopt;
}

// The element list of a read, whatever its result code. An empty array of
// any kind is an empty list; a missing value, or a value that is not a list
// of elements, gives nothing.
inline std::optional<std::vector<platform::Element>> elementList(platform::AttributeRead&& read) {
    if (auto* list = std::get_if<std::vector<platform::Element>>(&read.value)) return std::move(*list);
    if (auto* strings = std::get_if<std::vector<std::string>>(&read.value); strings && strings->empty()) {
        return std::vector<platform::Element>{};
    }
    return std::nullopt;
}

// Leaves out of `list` every entry that is the same element as one of
// `inside` (the elements a walk is in): such an entry leads back up, and
// entering it would make the walk go round forever.
inline void leaveOutLoops(std::vector<platform::Element>& list, const std::vector<platform::Element>& inside) {
    platform::Platform& p = platform::current();
    std::erase_if(list, [&](const platform::Element& entry) {
        return std::any_of(inside.begin(), inside.end(),
                           [&](const platform::Element& above) { return p.sameElement(entry, above); });
    });
}

// Whether a title marks the untitled layer that stands between an item and
// the items of its submenu.
inline bool isContainerTitle(const std::string& title) { return title.empty() || title == "(no title)"; }

}  // namespace zeblo::menus

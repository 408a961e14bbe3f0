// Reads shared by the menu record and the menu operations, for the places
// where only whether a value came back counts and the result code does not.
#pragma once

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

// Whether a title marks the untitled layer that stands between an item and
// the items of its submenu.
inline bool isContainerTitle(const std::string& title) { return title.empty() || title == "(no title)"; }

}  // namespace zeblo::menus

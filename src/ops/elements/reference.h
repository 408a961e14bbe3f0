// Element references: how to reach an element again, and a check that it is
// still the element the reference was made for.
//
//     1234:0.3.1.5~9f2c
//
// is process 1234, its window 0 (the index in the application's window list),
// then the children at indices 3, 1 and 5 (among the children a user sees,
// null entries counted), and the check 9f2c: 16 bits of a hash of the
// element's role and name. "1234:m.2~..." starts at the application's menu
// bar instead of a window, "1234:p0.1~..." at the application's first open
// pop-up menu (a context menu in a window of its own); "1234:0~..." is the
// window itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo::elements {

struct Reference {
    std::int32_t pid = 0;
    bool menuBar = false;    // the root is the menu bar, not a window
    bool popup = false;      // the root is an open pop-up menu (`window` its index)
    std::size_t window = 0;  // the window's index, when the root is a window
    std::vector<std::size_t> path;
    std::uint16_t check = 0;
};

std::string format(const Reference& ref);
// Nothing when `text` is not a reference.
std::optional<Reference> parseReference(std::string_view text);
// The check of an element with `role` (as the platform names it) and `name`.
std::uint16_t checkOf(std::string_view role, std::string_view name);

}  // namespace zeblo::elements

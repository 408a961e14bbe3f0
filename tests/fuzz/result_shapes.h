// Checks that a string result of an export has its documented shape. Each
// returns an empty string when the text is fine, else what is wrong with it.
#pragma once

#include <string>
#include <string_view>

namespace zeblo::fuzz {

// {"error": STRING}, written exactly as the library writes it.
std::string checkErrorObject(std::string_view text);
// A JSON array of strings with at most `maxItems` entries, or (when
// `errorAllowed`) the error object.
std::string checkStringArray(std::string_view text, bool errorAllowed, std::size_t maxItems = SIZE_MAX);
// {"app": STRING, "window": STRING} or the error object.
std::string checkFrontmost(std::string_view text);
// The menu snapshot: {"app", "menus": [ITEM...]} with every item's path the
// titles of its ancestors, or the error object.
std::string checkMenus(std::string_view text);

}  // namespace zeblo::fuzz

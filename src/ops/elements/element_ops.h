// Elements for agents and scripts: a window (or an application) as a tree of
// the elements a user sees, each with a short reference; finding elements by
// role, name, text, value and state; acting on an element by its reference;
// waiting for a query to hold; and pressing keys by name.
//
// Stateless like the rest of the library: a reference encodes how to reach
// the element again (process id, window, index path among the children a user
// sees) and a check of its role and name, and it is resolved and verified
// afresh before every action. A reference whose element has changed or gone
// fails with the "stale" kind and acts on nothing.
//
// Every function takes its query as JSON text and gives its result as JSON
// text; failures are thrown as ElementError (or, for what the platform throws,
// as the library's other errors). The shapes are documented in
// include/zeblo/zeblo_plus.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ops/elements/element_error.h"

namespace zeblo::elements {

std::string tree(std::string_view query);
std::string find(std::string_view query);
std::string get(std::string_view ref);
std::string act(std::string_view ref, std::string_view action, std::string_view value);
std::string wait(std::string_view query);
std::string pressKeys(std::string_view appName, std::string_view keys);

// Why a control the library looked for by role and title was not found, when
// the window holds one of that name that a user cannot see: "Button 'Cancel'
// is not visible". Nothing when there is no hidden one (or no such window).
std::optional<std::string> hiddenControl(const std::string& appName, const std::string& windowName,
                                         std::string_view role, const std::string& name);

}  // namespace zeblo::elements

// Attribute reads and the trail of ancestors shared by the element walks of
// the windows area.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace zeblo::windows {

// The attribute as a string; "" when it cannot be read or is not a string.
std::string readString(const platform::Element& element, std::string_view attribute);
// The element's "AXRole", when it is a readable string.
std::optional<std::string> roleOf(const platform::Element& element);
// The children to visit: the "AXChildren" list (null entries kept) when it is
// a readable list of 1 to 9,999 elements, otherwise nothing.
std::vector<platform::Element> childrenOf(const platform::Element& element);

// The elements a walk is inside, from the window down to the parent of the
// element it visits (whose depth is their number).
using Trail = std::vector<platform::Element>;
// Whether `child` is one of the elements of `inside`: a child list that leads
// back up, which the walk must not enter again.
bool leadsBack(const platform::Element& child, const Trail& inside);

}  // namespace zeblo::windows

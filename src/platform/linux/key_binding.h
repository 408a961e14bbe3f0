// Menu items' key bindings and the key equivalents read from them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/survey.h"

namespace zeblo::platform::linux_desktop {

struct Node;

// The key binding of the element's first action ("" when it has none), read
// once per node. A surveyed element (`item` is what its current survey knows
// of it, or null) without the Action interface costs no round trip.
const std::string& keyBindingOf(Node& node, const Survey::Item* item);

// A menu item's key equivalent from its key binding, as (character,
// modifiers) with the modifier bits of a menu item's key equivalent: 1 shift,
// 2 option, 4 control, 8 no command. Control (and GTK's <Primary>) is the
// command key, since the library's command flag is sent as Control.
std::optional<std::pair<std::string, std::int64_t>> keyEquivalent(const std::string& binding);

}  // namespace zeblo::platform::linux_desktop

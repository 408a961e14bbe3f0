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

// Whether `binding` is Qt's stand-in for a missing shortcut: the mnemonic of
// the item titled `title` ("Alt+A" for "Save &As"), which only works while
// the item's menu is open. A real Alt shortcut on a letter of the title
// reads the same and is taken for a mnemonic as well.
bool isQtMnemonic(const std::string& binding, const std::string& title);

}  // namespace zeblo::platform::linux_desktop

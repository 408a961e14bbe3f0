// Live reads of one AtspiAccessible through libatspi's public API, shared by
// the attribute, focus and key-binding code. Every answer is owned (see
// owned.h); nothing here keeps anything.
#pragma once

#include <atspi/atspi.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

// The AT-SPI role of `object`; ATSPI_ROLE_INVALID when it does not answer.
AtspiRole roleOfObject(AtspiAccessible* object);
// The accessible name; `ok` (when given) tells whether the read succeeded.
std::string nameOf(AtspiAccessible* object, bool* ok = nullptr);
// The whole text of an object with the Text interface.
std::optional<std::string> textContents(AtspiAccessible* object);
// The first action name of `object` ("" when it has no action).
std::string firstActionOf(AtspiAccessible* object);
// The first non-empty name among the other cells of `cell`'s table row ("" when
// there is none, or `cell` is not a table cell).
std::string rowNameOf(AtspiAccessible* cell);
// The first descendant of `root` with `role` (through the Collection
// interface: one round trip; without it, a search of the showing elements
// outside menus, a batch or two per level), or null.
AccessibleRef findByRole(AtspiAccessible* root, AtspiRole role);
// The first descendant of `root` in the `focused` and `showing` states (one
// round trip; without the Collection interface, a search that descends into
// showing elements only), or null.
AccessibleRef findFocused(AtspiAccessible* root);
// The application's showing windows (popups included only when titled).
std::vector<AccessibleRef> windowsOf(AtspiAccessible* app);

}  // namespace zeblo::platform::linux_desktop

// Live reads of one AtspiAccessible through libatspi's public API, shared by
// the attribute, focus and key-binding code. Every answer is owned (see
// owned.h); nothing here keeps anything.
#pragma once

#include <atspi/atspi.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/owned.h"
#include "platform/linux/session.h"
#include "platform/linux/sight.h"

// libatspi's own lookup of the object at a bus name and path (a new
// reference). libatspi exports it without declaring it; declared weak, it is
// null where a libatspi lacks it, and what needs it reads otherwise.
extern "C" AtspiAccessible* _atspi_ref_accessible(const char* app, const char* path) __attribute__((weak));

namespace zeblo::platform::linux_desktop {

// The AT-SPI role of `object`; ATSPI_ROLE_INVALID when it does not answer.
// `answered` (when given) is false when no answer came within the reply
// limit (the application is busy or stopped, not gone).
AtspiRole roleOfObject(AtspiAccessible* object, bool* answered = nullptr);
// The accessible name; `ok` (when given) tells whether the read succeeded.
std::string nameOf(AtspiAccessible* object, bool* ok = nullptr);
// The whole text of an object with the Text interface.
std::optional<std::string> textContents(AtspiAccessible* object);
// The names of `object`'s actions, asked of its application (empty when it
// has none); nothing when it does not answer within the reply limit.
std::optional<std::vector<std::string>> actionNamesOf(AtspiAccessible* object);
// The same for the objects at `paths` of the application `bus` on
// `connection`, in two batches (how many actions, then every name).
std::vector<std::optional<std::vector<std::string>>> actionNamesAt(DBusConnection* connection, const char* bus,
                                                                    const std::vector<const std::string*>& paths);
// How asking `object` to run its action `index` came out: done, refused (an
// error or a false answer), or unanswered within the reply limit (delivered,
// and perhaps still running: an action that opens a modal dialog answers
// when the dialog closes).
enum class ActionRun : std::uint8_t { done, refused, unanswered };
ActionRun runAction(AtspiAccessible* object, int index);
// The first action name of `object` ("" when it has no action).
std::string firstActionOf(AtspiAccessible* object);
// The first non-empty name among the other cells of `cell`'s table row ("" when
// there is none, or `cell` is not a table cell).
std::string rowNameOf(AtspiAccessible* cell);
// The first descendant of `root` with `role` (through the Collection
// interface: one round trip; without it, a search of the elements shown
// under `sight` outside menus, a batch or two per level), or null.
AccessibleRef findByRole(AtspiAccessible* root, AtspiRole role, Sight sight = Sight::showing);
// The descendant of `root` that has the keyboard focus: of the elements in
// the `focused` state and shown under `sight` (Qt reports a focused page tab
// and viewport beside the focused editor, and keeps the focus of a closed
// combo box's list), the first focusable one, nearest to the root first.
// One round trip through the Collection interface; without it, a search that
// descends into shown elements only. Null when there is none.
AccessibleRef findFocused(AtspiAccessible* root, Sight sight);
// The application's windows that are shown under `sight` (popups included
// only when titled); nothing when the application does not answer.
std::optional<std::vector<AccessibleRef>> windowsOf(AtspiAccessible* app, Sight sight);
// The states of `object` (bit n: AtspiStateType n); nothing when it does not
// answer.
std::optional<std::uint64_t> statesOf(AtspiAccessible* object);
// The application's shown pop-up menus that stand in windows of their own:
// its untitled windows and menus in the showing state.
std::vector<AccessibleRef> popupsOf(AtspiAccessible* app);
// The size of `object` on screen; nothing when it gives none.
std::optional<Size> sizeOf(AtspiAccessible* object);
// Where `object` is drawn in its window, or nothing.
std::optional<Box> boxOf(AtspiAccessible* object);
// Where `object` is on the screen; nothing when it does not say (a toolkit
// that knows only window coordinates gives none).
std::optional<ScreenBox> screenBoxOf(AtspiAccessible* object);

}  // namespace zeblo::platform::linux_desktop

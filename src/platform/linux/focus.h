// The focused window and the focused element of an application, with the
// workaround for GTK losing track of its focus (see focus.cpp).
#pragma once

#include <atspi/atspi.h>

#include <vector>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

class LinuxPlatform;

// Among `app`'s `windows`, the focused one: the one in the active state, else
// the one whose title the window manager reports as active. Borrowed from
// `windows`; null when there is none.
AtspiAccessible* focusedAmong(LinuxPlatform& p, AtspiAccessible* app, const std::vector<AccessibleRef>& windows);
// The application's focused window, or null.
AccessibleRef focusedWindowOf(LinuxPlatform& p, AtspiAccessible* app);
// The focused element of `app`'s focused window, or null.
AccessibleRef focusedElementOf(LinuxPlatform& p, AtspiAccessible* app);

}  // namespace zeblo::platform::linux_desktop

// The backend's ways of acting on an AT-SPI object that both its actions
// (linux_actions.cpp) and its settable values (linux_values.cpp) use.
#pragma once

#include <atspi/atspi.h>

#include <chrono>
#include <initializer_list>

#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

// What a call that acts gave: kAXErrorCannotComplete when it failed because
// its reply did not come within the reply limit.
AXError outcome(std::chrono::steady_clock::time_point start, bool failed, gboolean done);

// Presses `object`, or the twin that can be pressed in its place, or for a
// check box without any action, toggles it by key.
AXError pressOrTwin(LinuxPlatform& p, AtspiAccessible* object);

// Gives `object` the keyboard focus, its window brought to the front first.
AXError focus(LinuxPlatform& p, AtspiAccessible* object);

// The index of the first action of `object` named (in any case) one of
// `wanted`, or -1; and running the action at an index (-1: unsupported).
int actionIndex(AtspiAccessible* object, std::initializer_list<const char*> wanted);
AXError doAction(AtspiAccessible* object, int index);

}  // namespace zeblo::platform::linux_desktop

// The machine's default backend, used until another one is installed. Each
// system provides its own factory: the real desktop where the library has a
// backend for it and the desktop can be reached, otherwise no desktop
// (default/no_desktop.h).
#pragma once

#include <memory>

#include "platform/platform.h"

namespace zeblo::platform {

// Makes the default backend; called once, on the first use of `current()`
// while nothing is installed.
std::shared_ptr<Platform> makeDefaultPlatform();

// A build of the library may make its default backend differently (the
// simulated library: src/platform/default/simulated_library.cpp). `factory`
// replaces makeDefaultPlatform when set before the default backend is first
// used; it may be set from a static initializer.
using DefaultPlatformFactory = std::shared_ptr<Platform> (*)();
void setDefaultPlatformFactory(DefaultPlatformFactory factory);

}  // namespace zeblo::platform

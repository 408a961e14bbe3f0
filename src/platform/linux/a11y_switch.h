// The session's accessibility switch, and the applications that cannot be
// read because they started while it was off.
//
// Toolkits built on Chromium (Chromium itself, every Electron application)
// join the accessibility bus only when, as they start, the session bus says
// that accessibility is on (org.a11y.Status.IsEnabled), or their environment
// holds ACCESSIBILITY_ENABLED=1. Once registered, they expose their
// application and frames only, until an assistive technology asks the
// application's root object for its attributes; then the whole tree comes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zeblo::platform::linux_desktop {

// Sets org.a11y.Status.IsEnabled on the session bus when it is off; true when
// it was off and is now on. Each question waits at most the reply limit.
bool switchAccessibilityOn();

// A Chromium-based program's main process that is not on the accessibility
// bus.
struct UnreadableProgram {
    std::int32_t pid = 0;
    std::string program;
};

// This user's Chromium-based main processes whose process ids are not among
// `registered`. A program counts as Chromium-based when the V8 snapshot lies
// beside its executable; its helper processes (with a --type= argument) are
// left out.
std::vector<UnreadableProgram> chromiumOutside(const std::vector<std::int32_t>& registered);

}  // namespace zeblo::platform::linux_desktop

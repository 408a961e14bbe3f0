// The focused window and element of an application.
#include "platform/linux/focus.h"

#include "platform/linux/accessible.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

AtspiAccessible* focusedAmong(LinuxPlatform& p, AtspiAccessible* app, const std::vector<AccessibleRef>& windows) {
    AtspiAccessible* found = nullptr;
    for (const AccessibleRef& w : windows) {
        if (found == nullptr && hasState(w.get(), ATSPI_STATE_ACTIVE)) found = w.get();
    }
    if (found == nullptr) {
        Error error;
        const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(app, out(error)));
        if (p.session().activeWindowPid() == pid) {
            const std::string title = p.session().activeWindowTitle();
            for (const AccessibleRef& w : windows) {
                if (found == nullptr && nameOf(w.get()) == title) found = w.get();
            }
        }
    }
    return found;
}

AccessibleRef focusedWindowOf(LinuxPlatform& p, AtspiAccessible* app) {
    std::vector<AccessibleRef> windows = windowsOf(app, p.applicationSight(app)).value_or(std::vector<AccessibleRef>{});
    const AtspiAccessible* found = focusedAmong(p, app, windows);
    for (AccessibleRef& w : windows) {
        if (w.get() == found) return std::move(w);
    }
    return {};
}

// GTK can lose track of its focus after a menu item is activated through
// accessibility: the menu's keyboard grab ends without a focus-in, so keys
// still reach the focus widget while nothing reports the focused state. When
// the application owns the active window and nothing in it is focused, the X
// input focus is moved away and back, which makes the toolkit notice its
// focus again, and the question is asked again for a short while.
AccessibleRef focusedElementOf(LinuxPlatform& p, AtspiAccessible* app) {
    const AccessibleRef window = focusedWindowOf(p, app);
    if (!window) return {};
    const Sight sight = p.applicationSight(app);
    AccessibleRef focused = findFocused(window.get(), sight);
    if (!focused) {
        Error error;
        const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(app, out(error)));
        if (!error && p.session().activeWindowPid() == pid && p.session().refreshFocus()) {
            for (const double pause : {0.0, 0.005, 0.01, 0.02, 0.04, 0.08}) {
                p.session().serve(pause);
                focused = findFocused(window.get(), sight);
                if (focused) break;
            }
        }
    }
    return focused;
}

}  // namespace zeblo::platform::linux_desktop

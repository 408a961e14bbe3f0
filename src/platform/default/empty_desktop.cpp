// The default backend on systems without a real desktop backend: an empty
// desktop (no applications, no frontmost application). It keeps no trace, so
// a long-lived host accumulates nothing; its log lines go to the system log.
// On Linux, when the AT-SPI backend is built in and a display and the
// accessibility bus can be reached, that backend is the default instead.
#include <syslog.h>

#include <string>

#include "platform/default_platform.h"
#include "platform/sim/sim_desktop.h"
#ifdef ZEBLO_HAVE_LINUX_DESKTOP
#include "platform/linux/linux_platform.h"
#endif

namespace zeblo::platform {

std::shared_ptr<Platform> makeDefaultPlatform() {
#ifdef ZEBLO_HAVE_LINUX_DESKTOP
    if (auto desktop = linux_desktop::LinuxPlatform::connect()) return desktop;
#endif
    auto desktop = std::make_shared<sim::SimDesktop>();
    desktop->setRecording(false);
    desktop->setLogSink([](std::string_view line) {
        const std::string text(line);
        syslog(LOG_INFO, "%s", text.c_str());  // the line is text, never a format
    });
    return desktop;
}

}  // namespace zeblo::platform

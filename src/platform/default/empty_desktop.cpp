// The default backend on systems without a real desktop backend: an empty
// desktop (no applications, no frontmost application). It keeps no trace, so
// a long-lived host accumulates nothing; its log lines go to the system log.
#include <syslog.h>

#include <string>

#include "platform/default_platform.h"
#include "platform/sim/sim_desktop.h"

namespace zeblo::platform {

std::shared_ptr<Platform> makeDefaultPlatform() {
    auto desktop = std::make_shared<sim::SimDesktop>();
    desktop->setRecording(false);
    desktop->setLogSink([](std::string_view line) {
        const std::string text(line);
        syslog(LOG_INFO, "%s", text.c_str());  // the line is text, never a format
    });
    return desktop;
}

}  // namespace zeblo::platform

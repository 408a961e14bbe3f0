#include "platform/default/no_desktop.h"

#include <chrono>
#include <thread>

#include "platform/system_log.h"

namespace zeblo::platform {

void NoDesktop::refuse(std::string_view what) {
    log("No desktop can be reached (" + why_ + "): " + std::string(what));
}

EventSource NoDesktop::createEventSource(std::int32_t) {
    refuse("no key can be sent");
    return {};
}

Event NoDesktop::createKeyboardEvent(const EventSource* source, std::uint16_t, bool) {
    // Refused once per operation: when its source was made, or here for the
    // keystroke that makes none.
    if (source == nullptr) refuse("no key can be sent");
    return {};
}

bool NoDesktop::launchApplication(std::string_view name) {
    refuse("'" + std::string(name) + "' is not launched");
    return false;
}

void NoDesktop::sleep(double seconds) {
    if (seconds > 0 && seconds < 1e6) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

double NoDesktop::now() {
    using Seconds = std::chrono::duration<double>;
    return std::chrono::duration_cast<Seconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void NoDesktop::writeLog(std::string_view line) { writeSystemLog(line); }

}  // namespace zeblo::platform

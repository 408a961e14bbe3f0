#include "ops/keyboard/events.h"

#include "ops/keyboard/keystroke.h"

namespace zeblo::keyboard {

platform::EventSource hidEventSource() {
    return platform::current().createEventSource(platform::kEventSourceStateHIDSystemState);
}

platform::Event keyEvent(const platform::EventSource* source, std::uint16_t keyCode, bool down,
                         std::string_view message) {
    platform::Event event = platform::current().createKeyboardEvent(source, keyCode, down);
    if (!event) throw keystrokeFailure(std::string(message));
    return event;
}

void mark(const platform::Event& event) {
    platform::current().setEventIntegerField(event, EVENT_USER_DATA_FIELD, EVENT_MARKER);
}

void post(const platform::Event& event) { platform::current().postEvent(platform::kHIDEventTap, event); }

}  // namespace zeblo::keyboard

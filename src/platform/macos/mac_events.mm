// Keyboard events (CoreGraphics: CGEventSource.h, CGEvent.h). Events and
// sources are Core Foundation objects; a creation that fails gives a null
// handle. An empty event handle, or one of another backend, is ignored.

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

CGEventRef MacPlatform::cgEvent(const Event& event) const noexcept {
    if (!event || event.owner() != this) return nullptr;
    return static_cast<CGEventRef>(event.raw());
}

CGEventSourceRef MacPlatform::cgEventSource(const EventSource& source) const noexcept {
    if (!source || source.owner() != this) return nullptr;
    return static_cast<CGEventSourceRef>(source.raw());
}

EventSource MacPlatform::createEventSource(std::int32_t stateId) {
    return guarded(EventSource(), [&] {
        // The library asks for state 1, kCGEventSourceStateHIDSystemState.
        ScopedCF<CGEventSourceRef> source = ScopedCF<CGEventSourceRef>::adopt(
            CGEventSourceCreate(static_cast<CGEventSourceStateID>(stateId)));
        return EventSource::adopt(this, source.release());
    });
}

Event MacPlatform::createKeyboardEvent(const EventSource* source, std::uint16_t keyCode,
                                       bool keyDown) {
    return guarded(Event(), [&] {
        CGEventSourceRef from = nullptr;
        if (source != nullptr && *source) {
            from = cgEventSource(*source);
            // A source this backend did not make cannot be used.
            if (from == nullptr) return Event();
        }
        // With no source the system's default source is used.
        ScopedCF<CGEventRef> event = ScopedCF<CGEventRef>::adopt(
            CGEventCreateKeyboardEvent(from, static_cast<CGKeyCode>(keyCode), keyDown));
        return Event::adopt(this, event.release());
    });
}

void MacPlatform::setEventFlags(const Event& event, std::uint64_t flags) {
    guardedVoid([&] {
        if (CGEventRef target = cgEvent(event)) {
            CGEventSetFlags(target, static_cast<CGEventFlags>(flags));
        }
    });
}

void MacPlatform::setEventIntegerField(const Event& event, std::uint32_t field, std::int64_t value) {
    guardedVoid([&] {
        if (CGEventRef target = cgEvent(event)) {
            // The library writes its marker into field 127, which has no name
            // among the CGEventField constants.
            CGEventSetIntegerValueField(target, static_cast<CGEventField>(field), value);
        }
    });
}

void MacPlatform::postEvent(std::uint32_t tap, const Event& event) {
    guardedVoid([&] {
        if (CGEventRef target = cgEvent(event)) {
            // Tap 0 is kCGHIDEventTap: the event enters where hardware events do.
            CGEventPost(static_cast<CGEventTapLocation>(tap), target);
        }
    });
}

}  // namespace zeblo::platform::macos

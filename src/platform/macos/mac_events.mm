// Keyboard events (CoreGraphics: CGEventSource.h, CGEvent.h). Events and
// sources are Core Foundation objects; a creation that fails gives a null
// handle. An empty event handle, or one of another backend, is ignored.
//
// Key codes arrive as the library's US key codes. Each key event is posted
// so that it gives under the current keyboard layout what it gives on a US
// layout (key_layout.h): when the layout types that character with another
// key or other modifiers, an event for that key is made and posted in its
// place, carrying the character as its text when it is typed (not a chord);
// when the layout has no key for it, the event carries the character as its
// text. Applications that read the event's text and those that translate its
// key code themselves then see the same character.

#include "platform/macos/mac_platform.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::macos {

namespace {

// The field that carries the library's marker; it has no CGEventField name.
constexpr auto kMarkerField = static_cast<CGEventField>(127);

void setText(CGEventRef event, const std::string& text) {
    const ScopedCF<CFStringRef> string = makeCFString(text);
    if (!string) return;
    std::vector<UniChar> units(static_cast<std::size_t>(CFStringGetLength(string.get())));
    CFStringGetCharacters(string.get(), CFRangeMake(0, static_cast<CFIndex>(units.size())), units.data());
    CGEventKeyboardSetUnicodeString(event, units.size(), units.data());
}

// Posts `event` as the current layout types its US key (see above).
void postForLayout(CGEventTapLocation tap, CGEventRef event) {
    const CGEventType type = CGEventGetType(event);
    const std::shared_ptr<const LayoutTable> layout = keyboardLayout();
    if (layout == nullptr || (type != kCGEventKeyDown && type != kCGEventKeyUp)) {
        CGEventPost(tap, event);
        return;
    }
    const auto code = static_cast<std::uint16_t>(CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode));
    const KeyTranslation translation = translateKey(*layout, code, CGEventGetFlags(event));
    switch (translation.kind) {
        case KeyTranslation::Kind::unchanged:
            break;
        case KeyTranslation::Kind::text:
            setText(event, translation.text);
            break;
        case KeyTranslation::Kind::key: {
            // A new event, so that the system's own text for it is that of
            // the new key; it keeps the source, the marker and the direction.
            const auto source = ScopedCF<CGEventSourceRef>::adopt(CGEventCreateSourceFromEvent(event));
            const auto moved = ScopedCF<CGEventRef>::adopt(
                CGEventCreateKeyboardEvent(source.get(), translation.keyCode, type == kCGEventKeyDown));
            if (!moved) break;
            CGEventSetFlags(moved.get(), static_cast<CGEventFlags>(translation.flags));
            CGEventSetIntegerValueField(moved.get(), kMarkerField, CGEventGetIntegerValueField(event, kMarkerField));
            if (!translation.text.empty()) setText(moved.get(), translation.text);
            CGEventPost(tap, moved.get());
            return;
        }
    }
    CGEventPost(tap, event);
}

}  // namespace

CGEventRef MacPlatform::cgEvent(const Event& event) const noexcept {
    if (!event || event.owner() != this) return nullptr;
    return static_cast<CGEventRef>(event.raw());
}

CGEventSourceRef MacPlatform::cgEventSource(const EventSource& source) const noexcept {
    if (!source || source.owner() != this) return nullptr;
    return static_cast<CGEventSourceRef>(source.raw());
}

void MacPlatform::beginKeystroke() {
    guardedVoid([&] {
        if (!refreshKeyboardLayout()) {
            log(std::string("Keyboard: the main thread did not answer within ") + std::to_string(replyLimitMs()) +
                " ms; " +
                (keyboardLayout() != nullptr ? "the keyboard layout read before is used"
                                             : "no keyboard layout is known yet"));
        }
        // Without the permission the system drops posted events silently.
        if (!CGPreflightPostEventAccess()) {
            log("Keyboard: this process may not post keyboard events (System Settings > Privacy & Security > "
                "Accessibility); the system drops them");
        }
    });
}

EventSource MacPlatform::createEventSource(std::int32_t stateId) {
    // Every keystroke but a single key into an application starts here.
    beginKeystroke();
    return guarded(EventSource(), [&] {
        // The library asks for state 1, kCGEventSourceStateHIDSystemState.
        ScopedCF<CGEventSourceRef> source = ScopedCF<CGEventSourceRef>::adopt(
            CGEventSourceCreate(static_cast<CGEventSourceStateID>(stateId)));
        return EventSource::adopt(this, source.release());
    });
}

Event MacPlatform::createKeyboardEvent(const EventSource* source, std::uint16_t keyCode,
                                       bool keyDown) {
    const bool fromSource = source != nullptr && *source;
    // A single key into an application has no source: its key-down starts it.
    if (!fromSource && keyDown) beginKeystroke();
    if (!keyboardEventsAllowed()) {
        log("Keyboard: no keyboard event can be made on this thread until the main thread has made the first one");
        return Event();
    }
    return guarded(Event(), [&] {
        CGEventSourceRef from = nullptr;
        if (fromSource) {
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
        // Tap 0 is kCGHIDEventTap: the event enters where hardware events do.
        if (CGEventRef target = cgEvent(event)) postForLayout(static_cast<CGEventTapLocation>(tap), target);
    });
}

}  // namespace zeblo::platform::macos

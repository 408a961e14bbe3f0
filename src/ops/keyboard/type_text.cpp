// Typing text key by key, as a user of a US keyboard would.
#include "core/unicode.h"
#include "ops/keyboard/events.h"
#include "ops/keyboard/keystroke.h"

namespace zeblo {

void Keystroke::typeText(const std::string& text, bool markEvents) {
    platform::Platform& p = platform::current();
    // The source comes first, so the empty text fails too when none can be made.
    const platform::EventSource source = keyboard::hidEventSource();
    if (!source) throw keystrokeFailure("Failed to create event source");

    const auto emit = [&](std::uint16_t code, bool down, std::optional<std::uint64_t> flags,
                          std::string_view failure) {
        const platform::Event event = keyboard::keyEvent(&source, code, down, failure);
        if (markEvents) keyboard::mark(event);
        if (flags) p.setEventFlags(event, *flags);
        keyboard::post(event);
    };

    for (const std::string& c : text::graphemes(text)) {
        const std::optional<keyboard::KeyPress> key = charToKeyCode(c);
        if (!key) throw keystrokeFailure("Unsupported character: '" + c + "'");
        // A shifted character is wrapped in a press of the Shift key and its
        // own events carry exactly the Shift flag; the Shift events carry no
        // flags of their own.
        const std::optional<std::uint64_t> flags =
            key->needsShift ? std::optional<std::uint64_t>(platform::kEventFlagShift) : std::nullopt;
        if (key->needsShift) emit(keyboard::kShiftKeyCode, true, std::nullopt, "Failed to create shift down event");
        emit(key->keyCode, true, flags, "Failed to create key down event");
        emit(key->keyCode, false, flags, "Failed to create key up event");
        if (key->needsShift) emit(keyboard::kShiftKeyCode, false, std::nullopt, "Failed to create shift up event");
        p.sleep(0.005);
    }
}

}  // namespace zeblo

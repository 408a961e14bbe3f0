// Keyboard and text input: synthesized key presses into a named application
// or system-wide, typing text key by key, pasting through the general
// pasteboard (whose contents are put back afterwards), and setting the value of
// the focused text field directly. Stateless: every call asks the platform
// afresh and releases every handle it obtained before it returns.
//
// Failures are thrown: `KeystrokeError` for `send`'s application lookup, and
// keystroke failures (`MessageError`, domain "Keystroke") for everything else.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ops/key_codes.h"
#include "ops/keyboard/keystroke_error.h"
#include "platform/platform.h"

namespace zeblo {

// The integer event field that carries the library's marker, and the marker:
// the ASCII codes of "ZEBLO", so that an event tap can tell the library's
// events from the user's.
inline constexpr std::uint32_t EVENT_USER_DATA_FIELD = 127;
inline constexpr std::int64_t EVENT_MARKER = 0x5A45424C4F;

class Keystroke {
public:
    Keystroke() = delete;

    // Presses one key in `appName` (exact, case-sensitive name; empty: the
    // frontmost application) after activating it and pausing 0.05 s.
    // `modifiers`: bit 0 Shift, 1 Control, 2 Option, 3 Command; other bits are
    // ignored. The events are not marked.
    static void send(const std::string& appName, const std::string& keyChar, std::int64_t modifiers);

    // Presses the key codes down in order and up in reverse order, system-wide,
    // every event marked. A `modifierFlags` of 0 leaves the events' own flags.
    static void sendGlobalKeystroke(const std::vector<std::uint16_t>& keyCodes, std::uint64_t modifierFlags);

    // Types `text` character by character as on a US keyboard, 0.005 s per
    // character; stops at the first character that cannot be typed.
    static void typeText(const std::string& text, bool markEvents);

    // Pastes `text` with Command-V through the general pasteboard, then puts
    // every saved (type, data) pair back, gathered into one item.
    static void pasteText(const std::string& text);

    // Sets the focused element's value (or that of the first direct child that
    // takes it) to `text`, then presses Return when `sendEnter` is set.
    static void pasteIntoFocusedField(const std::string& text, bool sendEnter);

private:
    static std::optional<keyboard::KeyCode> keyCharToKeyCode(std::string_view text) {
        return keyboard::keyCharToKeyCode(text);
    }
    static std::optional<keyboard::KeyPress> charToKeyCode(std::string_view character) {
        return keyboard::charToKeyCode(character);
    }
    // Sets "AXValue" of a text field; logs one line per outcome.
    static bool setAXValue(const platform::Element& element, const std::string& value);
    // Posts one marked Return press; reports nothing.
    static void sendEnterKey();
};

}  // namespace zeblo

// The key code tables of a US ANSI keyboard and the two lookups built on them:
// a key given as text (a key name or character) to its virtual key code, and a
// character to type to its key code and whether Shift must be held.
//
// Both lookups are pure: no platform call, no state, no logging. Exactly 97
// characters can be typed: the printable ASCII characters U+0020 to U+007E,
// tab and line feed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zeblo::keyboard {

using KeyCode = std::uint16_t;

// A character to type: the key that carries it and whether Shift is needed.
struct KeyPress {
    KeyCode keyCode = 0;
    bool needsShift = false;

    friend bool operator==(const KeyPress&, const KeyPress&) = default;
};

// Well-known key codes.
inline constexpr KeyCode kShiftKeyCode = 56;   // the left Shift key
inline constexpr KeyCode kReturnKeyCode = 36;  // Return
inline constexpr KeyCode kVKeyCode = 9;        // V, of Command-V

// The key a text names: the whole text, fully lower-cased (Unicode), looked up
// among the letters, digits, one-character special keys ("\n", "\t", " ",
// backspace, escape and the unshifted punctuation), "f1".."f12" and the arrows
// "left", "right", "down", "up". Nothing is trimmed; no other name is known
// ("return", "home", "!" name no key).
std::optional<KeyCode> keyCharToKeyCode(std::string_view text);

// How to type one user-perceived character (one extended grapheme cluster):
// letters, digits and unshifted punctuation by their key, upper-case letters
// and the 21 shifted symbols by their unshifted key with Shift. No result for
// anything else (backspace, escape, carriage return, accented letters, ...).
std::optional<KeyPress> charToKeyCode(std::string_view character);

}  // namespace zeblo::keyboard

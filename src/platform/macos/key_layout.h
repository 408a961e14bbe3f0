// Typing the intended characters under any keyboard layout.
//
// The operations name keys by the virtual key codes of a US keyboard, and a
// key code stands for what that key types on a US layout ("2" with Shift is
// "@"). A Mac with another layout gives other characters for the same codes
// (code 6 is "y" under German, code 9 with Command is Command-period under
// Dvorak), so the backend rewrites every character key event before posting
// it: the US character of its code and Shift flag, then the key and modifiers
// that type that character in the current layout.
//
// Everything here is pure: the layout arrives as a table read beforehand
// (mac_keyboard_layout.mm reads it through UCKeyTranslate), so the mapping
// runs, and is tested, anywhere.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zeblo::platform::macos {

// Modifier keys as a layout table records them.
inline constexpr std::uint8_t kLayoutShift = 1;
inline constexpr std::uint8_t kLayoutOption = 2;
inline constexpr std::uint8_t kLayoutCommand = 4;

// What one key of a layout types with one set of modifiers.
struct LayoutKey {
    std::uint16_t keyCode = 0;
    std::uint8_t modifiers = 0;  // kLayout* bits
    std::string text;            // UTF-8; empty when the key types nothing
    bool dead = false;           // a dead key: `text` comes only with a second key
};

// A keyboard layout as read for kLayoutKeyCodes and kLayoutModifierSets.
struct LayoutTable {
    std::vector<LayoutKey> keys;
};

// The keys a table is read for (the main block of an ANSI, ISO or JIS
// keyboard without Return, Tab and Space), and the modifier sets, in the
// order a key is preferred in: fewer modifiers first.
inline constexpr std::array<std::uint16_t, 50> kLayoutKeyCodes{
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
    25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 50, 93, 94};
inline constexpr std::array<std::uint8_t, 6> kLayoutModifierSets{
    0, kLayoutShift, kLayoutOption, kLayoutShift | kLayoutOption, kLayoutCommand, kLayoutCommand | kLayoutShift};

// The character a US layout types on `keyCode`, with or without Shift; ""
// for a key that types no character (Return, Tab, Space, arrows, function
// keys, modifier keys, the keypad...).
std::string_view usCharacter(std::uint16_t keyCode, bool shift);

// How to post one key event.
struct KeyTranslation {
    enum class Kind : std::uint8_t {
        unchanged,  // as it is
        key,        // as `keyCode` with `flags` instead
        text,       // as it is, carrying `text` as its characters
    };
    Kind kind = Kind::unchanged;
    std::uint16_t keyCode = 0;
    std::uint64_t flags = 0;
    // The character the event types: set for `text`, and for `key` when the
    // event types text (no Command, Control or Option among its flags).
    std::string text;
};

// How an event with the US key code `keyCode` and the event flags `flags`
// (CGEventFlags) is posted under `layout` so that it gives what it gives on
// a US layout:
//   - a key that types no character on a US layout is left as it is;
//   - typing (none of Command, Control, Option): the key and Shift / Option
//     of the first key, in the preferred order, that types the character
//     without being a dead key; when the layout has none, the event keeps
//     its key and carries the character itself;
//   - a chord (Command, Control or Option held): the key that types the
//     character (with Command, the layout's Command keys first, as
//     "Dvorak - QWERTY Command" has them), dead keys included, with the
//     event's other modifiers kept, as a user of that layout would press it;
//     left as it is when the layout has no such key.
// The result is `unchanged` whenever it would post the same key and flags.
KeyTranslation translateKey(const LayoutTable& layout, std::uint16_t keyCode, std::uint64_t flags);

}  // namespace zeblo::platform::macos

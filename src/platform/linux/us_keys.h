// The library's key codes and what each stands for: the keysym the key
// types on a US keyboard, and for character keys the one it types with
// Shift. Every keyboard of the backend starts from this table: X11 looks the
// keysyms up in the active layout, a Wayland virtual keyboard makes its own
// keymap of them.
#pragma once

#include <cstdint>
#include <span>

namespace zeblo::platform::linux_desktop {

struct UsKey {
    std::uint16_t code;          // the library's key code
    unsigned long plain;         // the keysym without modifiers
    unsigned long shifted = 0;   // with Shift, for the keys that type a character (else 0)
};

// Every key the library can press, modifier keys left out.
std::span<const UsKey> usKeys();
// The key with code `code`, or null.
const UsKey* usKey(std::uint16_t code);

}  // namespace zeblo::platform::linux_desktop

// One key press as the library asks for it, whatever the window system:
// the keysyms the key stands for and the modifiers the event carries.
#pragma once

#include <cstdint>

namespace zeblo::platform::linux_desktop {

using KeySym = unsigned long;  // as Xlib's and xkbcommon's values

// The modifiers a key press may hold, as bits.
enum Modifier : std::uint8_t { kShiftBit = 1, kControlBit = 2, kAltBit = 4, kLevel3Bit = 8 };
using Modifiers = std::uint8_t;

// One key as the library means it.
struct KeyRequest {
    KeySym plain = 0;         // the keysym of the key without modifiers
    KeySym shifted = 0;       // with Shift, for the keys that type a character (else 0)
    Modifiers modifiers = 0;  // asked for by the event (Shift, Control, Alt)
};

}  // namespace zeblo::platform::linux_desktop

// A keymap of the library's own for a virtual keyboard: every key of the US
// key table (us_keys.h) on a key of its own, with its plain and shifted
// keysyms on levels 1 and 2, and Shift, Control and Alt keys. A client that
// types through it gives the intended characters whatever layout the user
// has, because the compositor hands this keymap to the focused application
// with the keys.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "platform/linux/key_request.h"
#include "platform/linux/us_keys.h"

namespace zeblo::platform::linux_desktop {

struct OwnKeymap {
    std::string text;                         // the keymap in XKB's text format
    std::map<std::uint16_t, std::uint32_t> keys;  // the library's key code: the evdev key code
    std::uint32_t modifierKey[3] = {};        // evdev codes of Shift, Control, Alt
    std::uint32_t modifierMask[3] = {};       // their bits in the modifier state
    // The modifier state (depressed mods) for `modifiers` (Shift, Control, Alt bits).
    std::uint32_t mask(Modifiers modifiers) const;
};

// Nothing when xkbcommon refuses the keymap (it does not for this table).
std::optional<OwnKeymap> ownKeymap(std::span<const UsKey> keys);

}  // namespace zeblo::platform::linux_desktop

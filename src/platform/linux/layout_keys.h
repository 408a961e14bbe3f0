// Where a keysym is on a keyboard layout the library does not choose (the
// compositor's own, which it types key codes on): the key, and the Shift and
// AltGr (ISO_Level3_Shift) keys to hold for the level that gives it, found
// by asking xkbcommon what each key gives with those keys down.
#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/linux/key_request.h"

namespace zeblo::platform::linux_desktop {

struct LayoutKey {
    xkb_keycode_t code = 0;
    std::vector<xkb_keycode_t> held;  // the modifier keys to hold around it, in order
};

// The key of layout `layout` of `keymap` that gives `sym` with the fewest
// of Shift and AltGr held; nothing when no key does.
std::optional<LayoutKey> findKey(xkb_keymap* keymap, xkb_layout_index_t layout, KeySym sym);
// Whether some level of `key` in layout `layout` gives `sym`.
bool levelsGive(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t layout, KeySym sym);
// Whether any key of any layout of `keymap` gives `sym`.
bool keymapGives(xkb_keymap* keymap, KeySym sym);
// The first key whose first level gives `sym` (a modifier key such as
// Control_L), or 0.
xkb_keycode_t keyGiving(xkb_keymap* keymap, KeySym sym);
// The dead key that types `sym` followed by a space (dead_circumflex for
// "^"), or 0.
KeySym deadKeyFor(KeySym sym);

}  // namespace zeblo::platform::linux_desktop

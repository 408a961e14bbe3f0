// Keysyms on a layout: every key whose levels list the keysym is tried with
// no modifier key, Shift, AltGr, then both, in a fresh xkb_state each time.
#include "platform/linux/layout_keys.h"

#include <X11/keysym.h>

#include <utility>

#include "platform/linux/wayland_owned.h"

namespace zeblo::platform::linux_desktop {

bool levelsGive(xkb_keymap* keymap, xkb_keycode_t key, xkb_layout_index_t layout, KeySym sym) {
    for (xkb_level_index_t level = 0; level < xkb_keymap_num_levels_for_key(keymap, key, layout); ++level) {
        const xkb_keysym_t* syms = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap, key, layout, level, &syms);
        for (int i = 0; i < count; ++i) {
            if (syms[i] == sym) return true;
        }
    }
    return false;
}

bool keymapGives(xkb_keymap* keymap, KeySym sym) {
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= xkb_keymap_max_keycode(keymap); ++key) {
        for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts_for_key(keymap, key); ++layout) {
            if (levelsGive(keymap, key, layout, sym)) return true;
        }
    }
    return false;
}

xkb_keycode_t keyGiving(xkb_keymap* keymap, KeySym sym) {
    for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= xkb_keymap_max_keycode(keymap); ++key) {
        const xkb_keysym_t* syms = nullptr;
        if (xkb_keymap_num_layouts_for_key(keymap, key) > 0 &&
            xkb_keymap_key_get_syms_by_level(keymap, key, 0, 0, &syms) == 1 && syms[0] == sym) {
            return key;
        }
    }
    return 0;
}

std::optional<LayoutKey> findKey(xkb_keymap* keymap, xkb_layout_index_t layout, KeySym sym) {
    const xkb_keycode_t shift = keyGiving(keymap, XK_Shift_L);
    const xkb_keycode_t level3 = keyGiving(keymap, XK_ISO_Level3_Shift);
    std::vector<std::vector<xkb_keycode_t>> choices{{}};
    if (shift != 0) choices.push_back({shift});
    if (level3 != 0) choices.push_back({level3});
    if (shift != 0 && level3 != 0) choices.push_back({shift, level3});
    for (const std::vector<xkb_keycode_t>& held : choices) {
        for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap); key <= xkb_keymap_max_keycode(keymap); ++key) {
            if (layout >= xkb_keymap_num_layouts_for_key(keymap, key) || !levelsGive(keymap, key, layout, sym)) {
                continue;
            }
            const XkbState state(xkb_state_new(keymap));
            if (!state) return std::nullopt;
            for (xkb_keycode_t modifier : held) xkb_state_update_key(state.get(), modifier, XKB_KEY_DOWN);
            xkb_state_update_mask(state.get(), xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_DEPRESSED),
                                  xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_LATCHED),
                                  xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_LOCKED), 0, 0, layout);
            if (xkb_state_key_get_one_sym(state.get(), key) == sym) return LayoutKey{key, held};
        }
    }
    return std::nullopt;
}

KeySym deadKeyFor(KeySym sym) {
    constexpr std::pair<KeySym, KeySym> kDeadKeys[] = {{XK_asciicircum, XK_dead_circumflex},
                                                       {XK_grave, XK_dead_grave},
                                                       {XK_asciitilde, XK_dead_tilde},
                                                       {XK_quotedbl, XK_dead_diaeresis},
                                                       {XK_apostrophe, XK_dead_acute}};
    for (const auto& [character, dead] : kDeadKeys) {
        if (character == sym) return dead;
    }
    return 0;
}

}  // namespace zeblo::platform::linux_desktop

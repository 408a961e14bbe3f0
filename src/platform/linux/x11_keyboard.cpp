// Key presses through XTest on the active XKB layout (see x11_keyboard.h).
#include "platform/linux/x11_keyboard.h"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <bitset>
#include <utility>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr Modifier kModifiers[] = {kShiftBit, kControlBit, kAltBit, kLevel3Bit};

constexpr std::size_t indexOf(Modifier modifier) {
    return modifier == kShiftBit ? 0 : modifier == kControlBit ? 1 : modifier == kAltBit ? 2 : 3;
}

// The key each modifier is pressed with.
constexpr KeySym kModifierKeysyms[] = {XK_Shift_L, XK_Control_L, XK_Alt_L, XK_ISO_Level3_Shift};

// Characters some layouts give only as dead keys, and those dead keys: the
// dead key followed by a space types the character.
constexpr std::pair<KeySym, KeySym> kDeadKeys[] = {{XK_asciicircum, XK_dead_circumflex},
                                                   {XK_grave, XK_dead_grave},
                                                   {XK_asciitilde, XK_dead_tilde},
                                                   {XK_quotedbl, XK_dead_diaeresis},
                                                   {XK_apostrophe, XK_dead_acute}};

void fake(Display* display, KeyCode key, bool down) {
    XTestFakeKeyEvent(display, key, down ? True : False, CurrentTime);
}

}  // namespace

// Where a keysym is: the key, the group that must be active and the
// modifiers (as the bits above) that select its level.
struct Placement {
    KeyCode key = 0;
    int group = 0;
    Modifiers modifiers = 0;
};

// The keyboard's current map and group.
class Keymap {
public:
    explicit Keymap(Display* display)
        : map_(XkbGetMap(display, XkbKeyTypesMask | XkbKeySymsMask | XkbModifierMapMask, XkbUseCoreKbd)) {
        XkbStateRec state{};
        if (XkbGetState(display, XkbUseCoreKbd, &state) == Success) {
            group_ = state.group;
            locked_ = state.locked_group;
        }
        if (map_) {
            level3Mask_ = maskOfKey(find(XK_ISO_Level3_Shift, 0).value_or(Placement{}).key);
        }
    }

    int group() const { return group_; }
    int lockedGroup() const { return locked_; }

    // A key for `keysym`: on the active group first, the lowest level
    // first; only levels reached with Shift and Level3 count. `levels` 0
    // looks at the first level only.
    std::optional<Placement> find(KeySym keysym, int levels = 8) const {
        if (!map_) return std::nullopt;
        for (int g = -1; g < XkbNumKbdGroups; ++g) {
            const int group = g < 0 ? group_ : g;
            if (g == group_) continue;
            for (int level = 0; level <= levels && level < 8; ++level) {
                for (int key = map_->min_key_code; key <= map_->max_key_code; ++key) {
                    const int groups = XkbKeyNumGroups(map_.get(), key);
                    if (groups == 0 || (g >= 0 && group >= groups)) continue;
                    const int effective = group < groups ? group : 0;
                    if (level >= XkbKeyGroupWidth(map_.get(), key, effective)) continue;
                    if (XkbKeySymEntry(map_.get(), key, level, effective) != keysym) continue;
                    if (const auto modifiers = levelModifiers(key, effective, level)) {
                        return Placement{static_cast<KeyCode>(key), group, *modifiers};
                    }
                }
            }
        }
        return std::nullopt;
    }

    // A key that gives `keysym` at its first level, or 0.
    KeyCode keyOf(KeySym keysym) const { return find(keysym, 0).value_or(Placement{}).key; }

private:
    unsigned maskOfKey(KeyCode key) const { return key != 0 ? map_->map->modmap[key] : 0; }

    // The fewest modifiers that select `level` of `key` in `group`, when
    // Shift and Level3 are enough.
    std::optional<Modifiers> levelModifiers(int key, int group, int level) const {
        if (level == 0) return Modifiers{0};
        const XkbKeyTypePtr type = XkbKeyKeyType(map_.get(), key, group);
        std::optional<Modifiers> best;
        std::size_t fewest = 9;
        for (int i = 0; i < type->map_count; ++i) {
            const XkbKTMapEntryRec& entry = type->map[i];
            if (!entry.active || entry.level != level) continue;
            const unsigned mask = entry.mods.mask;
            if ((mask & ~(ShiftMask | level3Mask_)) != 0) continue;
            const std::size_t count = std::bitset<8>(mask).count();
            if (count >= fewest) continue;
            fewest = count;
            best = static_cast<Modifiers>(((mask & ShiftMask) ? kShiftBit : 0) |
                                          ((level3Mask_ != 0 && (mask & level3Mask_) == level3Mask_) ? kLevel3Bit : 0));
        }
        return best;
    }

    KeyboardMap map_;
    int group_ = 0;
    int locked_ = 0;
    unsigned level3Mask_ = 0;
};

X11Keyboard::Held X11Keyboard::hold(Display* display, const Keymap& map, Modifiers wanted, int group) {
    Held held;
    if (group != map.group()) {
        held.group = map.lockedGroup();
        XkbLockGroup(display, XkbUseCoreKbd, static_cast<unsigned>(group));
    }
    for (const Modifier m : kModifiers) {
        const bool want = (wanted & m) != 0, is = (down_ & m) != 0;
        if (want && !is) {
            setModifier(display, map, m, true);
            if (down_ & m) held.added |= m;
        } else if (!want && is) {
            setModifier(display, map, m, false);
            held.lifted |= m;
        }
    }
    return held;
}

void X11Keyboard::unhold(Display* display, const Keymap& map, const Held& held) {
    for (const Modifier m : kModifiers) {
        if ((held.added & m) && (down_ & m)) setModifier(display, map, m, false);
        if ((held.lifted & m) && explicit_[indexOf(m)] > 0 && !(down_ & m)) setModifier(display, map, m, true);
    }
    if (held.group) XkbLockGroup(display, XkbUseCoreKbd, static_cast<unsigned>(*held.group));
}

void X11Keyboard::setModifier(Display* display, const Keymap& map, Modifier modifier, bool down) {
    const std::size_t i = indexOf(modifier);
    if (down) {
        const KeyCode key = map.keyOf(kModifierKeysyms[i]);
        if (key == 0) return;
        fake(display, key, true);
        downKey_[i] = key;
        down_ |= modifier;
    } else {
        fake(display, downKey_[i], false);
        down_ &= static_cast<Modifiers>(~modifier);
    }
}

bool X11Keyboard::press(Display* display, std::uint16_t id, const KeyRequest& key) {
    release(display, id);  // a key pressed twice is released in between
    const Keymap map(display);
    Modifiers asked = key.modifiers;
    for (const Modifier m : kModifiers) {
        if (explicit_[indexOf(m)] > 0) asked |= m;
    }
    const bool character = key.shifted != NoSymbol;
    const KeySym wanted = character && (asked & kShiftBit) ? key.shifted : key.plain;
    // A character's own level decides Shift and Level3; other keys keep the
    // Shift they were given.
    const Modifiers kept = character ? static_cast<Modifiers>(asked & (kControlBit | kAltBit)) : asked;

    std::optional<Placement> place = map.find(wanted);
    if (!place) {
        for (const auto& [symbol, dead] : kDeadKeys) {
            const std::optional<Placement> deadKey = symbol == wanted ? map.find(dead) : std::nullopt;
            if (!deadKey) continue;
            place = map.find(XK_space);
            if (!place) break;
            const Held held = hold(display, map, deadKey->modifiers, deadKey->group);
            fake(display, deadKey->key, true);
            fake(display, deadKey->key, false);
            unhold(display, map, held);
            break;
        }
    }
    if (!place) return false;
    Held held = hold(display, map, static_cast<Modifiers>(kept | place->modifiers), place->group);
    held.key = place->key;
    fake(display, place->key, true);
    XSync(display, False);
    pressed_[id] = held;
    return true;
}

void X11Keyboard::release(Display* display, std::uint16_t id) {
    const auto it = pressed_.find(id);
    if (it == pressed_.end()) return;
    const Held held = it->second;
    pressed_.erase(it);
    fake(display, held.key, false);
    unhold(display, Keymap(display), held);
    XSync(display, False);
}

void X11Keyboard::modifierKey(Display* display, Modifier modifier, bool down) {
    int& count = explicit_[indexOf(modifier)];
    if (down) {
        ++count;
        if (!(down_ & modifier)) setModifier(display, Keymap(display), modifier, true);
    } else if (count > 0) {
        --count;
        if (count == 0 && (down_ & modifier)) setModifier(display, Keymap(display), modifier, false);
    }
    XSync(display, False);
}

}  // namespace zeblo::platform::linux_desktop

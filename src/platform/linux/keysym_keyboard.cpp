// Keysym keys: the keysyms of one key, pressed in order and released in
// reverse, each checked against the compositor's layout first.
#include "platform/linux/keysym_keyboard.h"

#include <X11/keysym.h>

#include "platform/linux/layout_keys.h"

namespace zeblo::platform::linux_desktop {

bool KeysymKeyboard::typeable(KeySym sym) const {
    xkb_keymap* keymap = display_ != nullptr ? display_->keymap() : nullptr;
    if (keymap == nullptr) return true;  // the layout unknown: let the compositor try
    return keymapGives(keymap, sym);
}

bool KeysymKeyboard::press(std::uint16_t id, const KeyRequest& request) {
    const Modifiers modifiers = request.modifiers | held_;
    std::vector<KeySym> syms;
    if (modifiers & kControlBit && !(held_ & kControlBit)) syms.push_back(XK_Control_L);
    if (modifiers & kAltBit && !(held_ & kAltBit)) syms.push_back(XK_Alt_L);
    KeySym sym = request.plain;
    if (request.shifted != 0) {
        // A character: the compositor holds what its level needs.
        if (modifiers & kShiftBit) sym = request.shifted;
    } else if (modifiers & kShiftBit) {
        syms.push_back(XK_Shift_L);
    }
    if (!typeable(sym)) {
        const KeySym dead = deadKeyFor(sym);
        if (dead == 0 || !typeable(dead)) return false;
        keysym(dead, true);
        keysym(dead, false);
        sym = XK_space;
    }
    syms.push_back(sym);
    for (KeySym s : syms) keysym(s, true);
    pressed_[id] = std::move(syms);
    return true;
}

void KeysymKeyboard::release(std::uint16_t id) {
    const auto found = pressed_.find(id);
    if (found == pressed_.end()) return;
    for (auto it = found->second.rbegin(); it != found->second.rend(); ++it) keysym(*it, false);
    pressed_.erase(found);
}

void KeysymKeyboard::modifierKey(Modifier modifier, bool down) {
    held_ = static_cast<Modifiers>(down ? held_ | modifier : held_ & ~modifier);
    if (modifier == kControlBit) keysym(XK_Control_L, down);
    if (modifier == kAltBit) keysym(XK_Alt_L, down);
}

}  // namespace zeblo::platform::linux_desktop

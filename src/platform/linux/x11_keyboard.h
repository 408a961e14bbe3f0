// Key presses on whatever XKB layout is active. The library asks for keys
// by what they mean on a US keyboard; this finds, in the current keymap, the
// key, shift level and group that give the wanted keysym and holds the
// modifiers that level needs (Shift, ISO_Level3_Shift) around it, so that
// "@" is AltGr+Q under a German layout and "1" is Shift+& under a French one.
//
// The keymap is read afresh (XkbGetMap) for every press, so a layout changed
// between two calls is followed at once. A keysym the layout has on no key
// is typed as the layout's dead key followed by a space where it has one
// ("^", "`", "~", '"' on German and French layouts); otherwise it is not
// typed at all and press() says so. No key is ever remapped.
//
// The header leaves Xlib out (it is part of LinuxPlatform): a display is an
// `_XDisplay*`, a keysym an unsigned long, a key code an unsigned char.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "platform/linux/key_request.h"

struct _XDisplay;

namespace zeblo::platform::linux_desktop {

class Keymap;
using Display = ::_XDisplay;

class X11Keyboard {
public:
    // Presses the key `id` (the library's key code). For a character key,
    // Shift (asked for, or held by a Shift key event) chooses the character,
    // and the level that character has in the layout decides which of
    // Shift and Level3 are held. False when the layout cannot type it
    // (nothing is pressed).
    bool press(Display* display, std::uint16_t id, const KeyRequest& key);
    // Releases the key `id` and the modifiers its press added, and presses
    // again the modifier keys it had to lift.
    void release(Display* display, std::uint16_t id);
    // A modifier key event (Shift, Control or Alt): held until its release.
    void modifierKey(Display* display, Modifier modifier, bool down);

private:
    struct Held {
        unsigned char key = 0;
        Modifiers added = 0;       // pressed for this key
        Modifiers lifted = 0;      // held modifier keys released for it
        std::optional<int> group;  // the locked group to return to
    };
    // Makes exactly `wanted` held, and the group `group` active.
    Held hold(Display* display, const Keymap& map, Modifiers wanted, int group);
    void unhold(Display* display, const Keymap& map, const Held& held);
    void setModifier(Display* display, const Keymap& map, Modifier modifier, bool down);

    std::map<std::uint16_t, Held> pressed_;
    std::array<int, 4> explicit_{};  // modifier key events down, per modifier
    Modifiers down_ = 0;             // modifiers held now
    std::array<unsigned char, 4> downKey_{};
};

}  // namespace zeblo::platform::linux_desktop

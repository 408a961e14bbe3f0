// Keys as keysyms, for a compositor that presses each keysym on the key and
// level of its current layout that gives it, holding Shift or AltGr as that
// level needs, and drops a keysym its layout does not have: mutter, through
// its remote desktop session or through the desktop portal. The layout (the
// keymap the compositor gives its clients, from WaylandDisplay) tells which
// keysyms can be typed and which only as a dead key and a space.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "platform/linux/key_request.h"
#include "platform/linux/wayland_display.h"

namespace zeblo::platform::linux_desktop {

class KeysymKeyboard {
public:
    virtual ~KeysymKeyboard() = default;

    // Presses the key `id` (the library's key code) standing for `key`, with
    // the modifiers asked for and those held; false (nothing pressed) for a
    // keysym the layout cannot type.
    bool press(std::uint16_t id, const KeyRequest& key);
    void release(std::uint16_t id);
    // Control and Alt go down at once; a held Shift only chooses characters
    // (and is pressed around keys without one), as the compositor holds
    // Shift itself for a character's level.
    void modifierKey(Modifier modifier, bool down);

protected:
    // `display` (may be null: the layout is unknown) gives the layout.
    explicit KeysymKeyboard(WaylandDisplay* display) : display_(display) {}
    virtual void keysym(KeySym sym, bool down) = 0;

    WaylandDisplay* display_;

private:
    bool typeable(KeySym sym) const;

    Modifiers held_ = 0;
    // Keys down: the keysyms pressed for each, in order.
    std::map<std::uint16_t, std::vector<KeySym>> pressed_;
};

}  // namespace zeblo::platform::linux_desktop

// Keys through a virtual keyboard (zwp_virtual_keyboard_v1, wlroots
// compositors such as sway): the keyboard carries the library's own keymap
// (own_keymap.h), so each key of the US table is pressed on its own key and
// Shift, Control and Alt are set as the keyboard's modifier state.
//
// A compositor that had no keyboard before this one tells its clients that
// the seat now has one, and they ask for it; keys sent before they have it
// are lost. Opening the keyboard therefore waits until the seat shows the
// keyboard and then a short while more (kSettleSeconds), once per process.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>

#include "platform/linux/key_request.h"
#include "platform/linux/own_keymap.h"
#include "platform/linux/wayland_display.h"
#include "virtual-keyboard-unstable-v1-client-protocol.h"

namespace zeblo::platform::linux_desktop {

// The protocol's destructor request (generated as a static function).
inline void destroyVirtualKeyboard(zwp_virtual_keyboard_v1* keyboard) noexcept {
    zwp_virtual_keyboard_v1_destroy(keyboard);
}

class VirtualKeyboard {
public:
    // Null when the compositor offers no virtual keyboard or refuses one.
    static std::unique_ptr<VirtualKeyboard> open(WaylandDisplay& display);
    static constexpr double kSettleSeconds = 0.15;

    // Presses the key `id` (the library's key code) with the modifiers asked
    // for and those held by modifier key events. False for a key the table
    // does not have.
    bool press(std::uint16_t id, const KeyRequest& key);
    void release(std::uint16_t id);
    // A modifier key event (Shift, Control or Alt): held until its release.
    void modifierKey(Modifier modifier, bool down);

private:
    explicit VirtualKeyboard(WaylandDisplay& display) : display_(display) {}
    void key(std::uint32_t evdev, bool down);
    void setModifiers(std::uint32_t mask);

    WaylandDisplay& display_;
    Proxy<zwp_virtual_keyboard_manager_v1> manager_;
    Owned<zwp_virtual_keyboard_v1, destroyVirtualKeyboard> keyboard_;
    OwnKeymap keymap_;
    Modifiers held_ = 0;                        // by modifier key events
    std::map<std::uint16_t, Modifiers> pressed_;  // keys down, with the modifiers set for them
};

}  // namespace zeblo::platform::linux_desktop

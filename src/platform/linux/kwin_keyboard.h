// Keys through KWin's fake input (org_kde_kwin_fake_input): KWin types
// evdev key codes on its own layout, the one it gives its clients, so each
// keysym is looked up in that keymap (layout_keys.h) and pressed with the
// Shift and AltGr keys its level needs; Control and Alt are pressed as keys.
//
// KWin announces fake input only to programs it was told to trust: the
// X-KDE-Wayland-Interfaces key of a desktop file whose Exec is the program
// (the host, not this library) must list org_kde_kwin_fake_input. Opening
// asks KWin with authenticate, which KWin 5.27 grants without asking the
// user, and then waits, as for any new keyboard, until the seat shows it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "kwin-fake-input-client-protocol.h"
#include "platform/linux/key_request.h"
#include "platform/linux/wayland_display.h"

namespace zeblo::platform::linux_desktop {

class FakeInputKeyboard {
public:
    // Null when KWin does not announce fake input to this program.
    static std::unique_ptr<FakeInputKeyboard> open(WaylandDisplay& display);
    static constexpr double kSettleSeconds = 0.15;

    // Presses the key `id` standing for `key`; false (nothing pressed) when
    // KWin's layout has no key for its keysym.
    bool press(std::uint16_t id, const KeyRequest& key);
    void release(std::uint16_t id);
    // Control and Alt go down as keys; a held Shift only chooses characters
    // (and is pressed around keys without one).
    void modifierKey(Modifier modifier, bool down);

private:
    explicit FakeInputKeyboard(WaylandDisplay& display) : display_(display) {}
    void key(std::uint32_t keycode, bool down);

    WaylandDisplay& display_;
    Proxy<org_kde_kwin_fake_input> input_;
    Modifiers held_ = 0;
    // Keys down: the XKB key codes pressed for each, in order.
    std::map<std::uint16_t, std::vector<std::uint32_t>> pressed_;
};

}  // namespace zeblo::platform::linux_desktop

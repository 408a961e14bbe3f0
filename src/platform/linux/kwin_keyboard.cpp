// KWin's fake input: keyboard_key requests carry evdev codes (XKB key code
// minus 8), flushed at once; the keymap is the one KWin gives its clients.
#include "platform/linux/kwin_keyboard.h"

#include <X11/keysym.h>

#include "platform/linux/detach.h"
#include "platform/linux/layout_keys.h"
#include "platform/linux/offers.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr double kReplySecondsOfCompositor = 1.0;
constexpr std::uint32_t kEvdevOffset = 8;  // XKB key codes are evdev codes plus 8

}  // namespace

std::unique_ptr<FakeInputKeyboard> FakeInputKeyboard::open(WaylandDisplay& display) {
    std::unique_ptr<FakeInputKeyboard> self(new FakeInputKeyboard(display));
    self->input_.reset(static_cast<org_kde_kwin_fake_input*>(display.bind(&org_kde_kwin_fake_input_interface, 4)));
    if (!self->input_ || wl_proxy_get_version(reinterpret_cast<wl_proxy*>(self->input_.get())) < 4) return nullptr;
    org_kde_kwin_fake_input_authenticate(self->input_.get(), "ZEBLOui", "types keys for the automation of its host");
    if (!display.roundtrip(kReplySecondsOfCompositor) || display.broken()) return nullptr;
    // A seat without a keyboard gets KWin's fake one now, and its clients
    // take a moment to ask for it: keys before that are lost.
    display.dispatchUntil([&] { return display.seatHasKeyboard() && display.keymap() != nullptr; },
                          monotonicSeconds() + kReplySecondsOfCompositor);
    display.dispatchUntil([] { return false; }, monotonicSeconds() + kSettleSeconds);
    return self;
}

void FakeInputKeyboard::key(std::uint32_t keycode, bool down) {
    org_kde_kwin_fake_input_keyboard_key(input_.get(), keycode - kEvdevOffset,
                                         down ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
    wl_display_flush(display_.get());
}

bool FakeInputKeyboard::press(std::uint16_t id, const KeyRequest& request) {
    xkb_keymap* keymap = display_.keymap();
    if (keymap == nullptr) return false;
    const Modifiers modifiers = request.modifiers | held_;
    std::vector<std::uint32_t> keys;
    const auto add = [&](KeySym sym) {
        if (const xkb_keycode_t code = keyGiving(keymap, sym)) keys.push_back(code);
    };
    if (modifiers & kControlBit && !(held_ & kControlBit)) add(XK_Control_L);
    if (modifiers & kAltBit && !(held_ & kAltBit)) add(XK_Alt_L);
    KeySym sym = request.plain;
    if (request.shifted != 0) {
        if (modifiers & kShiftBit) sym = request.shifted;  // the level chooses Shift
    } else if (modifiers & kShiftBit) {
        add(XK_Shift_L);
    }
    std::optional<LayoutKey> found = findKey(keymap, 0, sym);
    if (!found) {
        // A character the layout has only as a dead key: the dead key, then a space.
        const KeySym dead = deadKeyFor(sym);
        const std::optional<LayoutKey> deadKey = dead != 0 ? findKey(keymap, 0, dead) : std::nullopt;
        found = deadKey ? findKey(keymap, 0, XK_space) : std::nullopt;
        if (!found) return false;
        for (xkb_keycode_t held : deadKey->held) key(held, true);
        key(deadKey->code, true);
        key(deadKey->code, false);
        for (auto it = deadKey->held.rbegin(); it != deadKey->held.rend(); ++it) key(*it, false);
    }
    keys.insert(keys.end(), found->held.begin(), found->held.end());
    keys.push_back(found->code);
    for (std::uint32_t code : keys) key(code, true);
    pressed_[id] = std::move(keys);
    return true;
}

void FakeInputKeyboard::release(std::uint16_t id) {
    const auto found = pressed_.find(id);
    if (found == pressed_.end()) return;
    for (auto it = found->second.rbegin(); it != found->second.rend(); ++it) key(*it, false);
    pressed_.erase(found);
}

void FakeInputKeyboard::modifierKey(Modifier modifier, bool down) {
    held_ = static_cast<Modifiers>(down ? held_ | modifier : held_ & ~modifier);
    xkb_keymap* keymap = display_.keymap();
    if (keymap == nullptr || modifier == kShiftBit) return;
    const KeySym sym = modifier == kControlBit ? XK_Control_L : modifier == kAltBit ? XK_Alt_L : 0;
    if (const xkb_keycode_t code = sym != 0 ? keyGiving(keymap, sym) : 0) key(code, down);
}

}  // namespace zeblo::platform::linux_desktop

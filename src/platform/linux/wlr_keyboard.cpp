// The virtual keyboard: the keymap goes to the compositor through a memory
// file, keys and modifier states as protocol requests, flushed at once.
#include "platform/linux/wlr_keyboard.h"

#include <sys/mman.h>
#include <unistd.h>

#include "platform/linux/detach.h"
#include "platform/linux/offers.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr double kReplySecondsOfCompositor = 1.0;

std::uint32_t nowMs() { return static_cast<std::uint32_t>(monotonicSeconds() * 1000); }

// A sealed-size memory file holding `text` and its terminating NUL.
Fd memoryFile(const std::string& text) {
    Fd fd(memfd_create("zeblo-keymap", MFD_CLOEXEC));
    if (!fd) return fd;
    std::size_t written = 0;
    while (written <= text.size()) {
        const ssize_t n = write(fd.get(), text.c_str() + written, text.size() + 1 - written);
        if (n <= 0) return Fd();
        written += static_cast<std::size_t>(n);
    }
    return fd;
}

}  // namespace

std::unique_ptr<VirtualKeyboard> VirtualKeyboard::open(WaylandDisplay& display) {
    std::unique_ptr<VirtualKeyboard> self(new VirtualKeyboard(display));
    self->manager_.reset(static_cast<zwp_virtual_keyboard_manager_v1*>(
        display.bind(&zwp_virtual_keyboard_manager_v1_interface, 1)));
    if (!self->manager_ || display.seat() == nullptr) return nullptr;
    std::optional<OwnKeymap> keymap = ownKeymap(usKeys());
    if (!keymap) return nullptr;
    self->keymap_ = std::move(*keymap);
    self->keyboard_.reset(
        zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(self->manager_.get(), display.seat()));
    const Fd file = memoryFile(self->keymap_.text);
    if (!file) return nullptr;
    zwp_virtual_keyboard_v1_keymap(self->keyboard_.get(), WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file.get(),
                                   static_cast<std::uint32_t>(self->keymap_.text.size() + 1));
    // A refusal (the compositor does not let this client have a keyboard)
    // ends the connection with a protocol error.
    if (!display.roundtrip(kReplySecondsOfCompositor) || display.broken()) return nullptr;
    display.dispatchUntil([&] { return display.seatHasKeyboard(); },
                          monotonicSeconds() + kReplySecondsOfCompositor);
    const double settled = monotonicSeconds() + kSettleSeconds;
    display.dispatchUntil([] { return false; }, settled);
    return self;
}

void VirtualKeyboard::key(std::uint32_t evdev, bool down) {
    zwp_virtual_keyboard_v1_key(keyboard_.get(), nowMs(), evdev,
                                down ? WL_KEYBOARD_KEY_STATE_PRESSED : WL_KEYBOARD_KEY_STATE_RELEASED);
}

void VirtualKeyboard::setModifiers(std::uint32_t mask) {
    zwp_virtual_keyboard_v1_modifiers(keyboard_.get(), mask, 0, 0, 0);
}

bool VirtualKeyboard::press(std::uint16_t id, const KeyRequest& request) {
    const auto found = keymap_.keys.find(id);
    if (found == keymap_.keys.end()) return false;
    const Modifiers modifiers = static_cast<Modifiers>((request.modifiers | held_) & (kShiftBit | kControlBit | kAltBit));
    setModifiers(keymap_.mask(modifiers));
    key(found->second, true);
    pressed_[id] = modifiers;
    wl_display_flush(display_.get());
    return true;
}

void VirtualKeyboard::release(std::uint16_t id) {
    const auto found = keymap_.keys.find(id);
    if (found == keymap_.keys.end() || pressed_.erase(id) == 0) return;
    key(found->second, false);
    setModifiers(keymap_.mask(held_));
    wl_display_flush(display_.get());
}

void VirtualKeyboard::modifierKey(Modifier modifier, bool down) {
    const int index = modifier == kShiftBit ? 0 : modifier == kControlBit ? 1 : modifier == kAltBit ? 2 : -1;
    if (index < 0) return;
    held_ = static_cast<Modifiers>(down ? held_ | modifier : held_ & ~modifier);
    key(keymap_.modifierKey[index], down);
    setModifiers(keymap_.mask(held_));
    wl_display_flush(display_.get());
}

}  // namespace zeblo::platform::linux_desktop

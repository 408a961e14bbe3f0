// Keyboard events through XTest. Key codes are the library's US key codes
// (the physical keys of a US layout); each stands for what that key types on
// a US keyboard, without and with Shift, and X11Keyboard finds the key, level
// and group of the active layout that type it. The flags become modifiers:
// shift is Shift, control and command are Control (so command-V pastes),
// option is Alt. The event marker has no X11 counterpart and is dropped.
#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include "platform/linux/linux_platform.h"
#include "platform/linux/us_keys.h"

namespace zeblo::platform::linux_desktop {

namespace {

// The modifier keys, held by their own events.
constexpr std::pair<std::uint16_t, Modifier> kModifierKeys[] = {{56, kShiftBit},   {60, kShiftBit}, {59, kControlBit},
                                                                {62, kControlBit}, {58, kAltBit},   {61, kAltBit}};

Modifiers modifiersOf(std::uint64_t flags) {
    Modifiers bits = 0;
    if (flags & kEventFlagShift) bits |= kShiftBit;
    // The command key of a keystroke is Control on this desktop.
    if (flags & (kEventFlagControl | kEventFlagCommand)) bits |= kControlBit;
    if (flags & kEventFlagOption) bits |= kAltBit;
    return bits;
}

KeyEvent* keyEvent(const Event& event, Platform* self) {
    if (!event || event.owner() != self) return nullptr;
    return static_cast<KeyEvent*>(event.raw());
}

}  // namespace

// In a session with no way to send keys there are no event sources, nor
// events without one: every keyboard call fails, after one line that says
// why.
EventSource LinuxPlatform::createEventSource(std::int32_t /*stateId*/) {
    if (const std::string missing = session_->keysMissing(); !missing.empty()) {
        log(missing);
        return {};
    }
    return handOut<EventSource>(std::make_unique<KeyEvent>());
}

Event LinuxPlatform::createKeyboardEvent(const EventSource* source, std::uint16_t keyCode, bool keyDown) {
    if (source == nullptr) {
        if (const std::string missing = session_->keysMissing(); !missing.empty()) {
            log(missing);
            return {};
        }
    }
    auto event = std::make_unique<KeyEvent>();
    event->keyCode = keyCode;
    event->down = keyDown;
    return handOut<Event>(std::move(event));
}

void LinuxPlatform::setEventFlags(const Event& event, std::uint64_t flags) {
    if (KeyEvent* e = keyEvent(event, this)) e->flags = flags;
}

void LinuxPlatform::setEventIntegerField(const Event& /*event*/, std::uint32_t /*field*/, std::int64_t /*value*/) {
    // X events carry no field for the library's marker.
}

void LinuxPlatform::postEvent(std::uint32_t /*tap*/, const Event& event) {
    const auto locked = guard();
    touch();
    KeyEvent* e = keyEvent(event, this);
    if (e == nullptr) return;
    // The first key after text was put on the clipboard is the paste key:
    // what is asked for from now on is the paste's.
    if (paste_ && !paste_->answeredAtKey) {
        paste_->answeredAtKey = session_->clipboardDataAnswered();
        paste_->keyTime = now();
    }
    for (const auto& [code, modifier] : kModifierKeys) {
        if (code == e->keyCode) return session_->modifierKey(modifier, e->down);
    }
    const UsKey* key = usKey(e->keyCode);
    if (key == nullptr) return;
    if (!e->down) return session_->release(e->keyCode);
    if (!session_->press(e->keyCode, KeyRequest{key->plain, key->shifted, modifiersOf(e->flags)})) {
        const bool shifted = key->shifted != NoSymbol && (modifiersOf(e->flags) & kShiftBit);
        const char* name = XKeysymToString(shifted ? key->shifted : key->plain);
        log(std::string("Keyboard: no key types '") + (name != nullptr ? name : "?") +
            "' in the current layout; the key is skipped");
    }
}

bool LinuxPlatform::typeIntoEmptyField(std::string_view text) {
    const auto locked = guard();
    std::vector<std::pair<const UsKey*, bool>> keys;  // the key, and whether shifted
    for (const char c : text) {
        const auto sym = static_cast<KeySym>(static_cast<unsigned char>(c));
        const UsKey* found = nullptr;
        bool shifted = false;
        for (const UsKey& k : usKeys()) {
            // Printable ASCII characters are their own keysyms.
            if (found == nullptr && c >= 0x20 && c < 0x7f && (k.plain == sym || k.shifted == sym)) {
                found = &k;
                shifted = k.plain != sym;
            }
        }
        if (found == nullptr) return false;
        keys.emplace_back(found, shifted);
    }
    const auto stroke = [&](const UsKey& key, Modifiers modifiers) {
        const bool pressed = session_->press(key.code, KeyRequest{key.plain, key.shifted, modifiers});
        if (pressed) session_->release(key.code);
        return pressed;
    };
    for (const auto& [key, shifted] : keys) {
        if (!stroke(*key, shifted ? kShiftBit : 0)) return false;
    }
    session_->serve(0);
    return true;
}

}  // namespace zeblo::platform::linux_desktop

// Keyboard events through XTest. Key codes are the library's US key codes
// (the physical keys of a US layout); each stands for what that key types on
// a US keyboard, without and with Shift, and X11Keyboard finds the key, level
// and group of the active layout that type it. The flags become modifiers:
// shift is Shift, control and command are Control (so command-V pastes),
// option is Alt. The event marker has no X11 counterpart and is dropped.
#include <X11/XKBlib.h>
#include <X11/keysym.h>

#include "platform/linux/linux_platform.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

namespace {

struct KeyName {
    std::uint16_t code;
    KeySym plain;
    KeySym shifted = NoSymbol;  // for the keys that type a character
};

constexpr KeyName kKeys[] = {
    {0, XK_a, XK_A},
    {1, XK_s, XK_S},
    {2, XK_d, XK_D},
    {3, XK_f, XK_F},
    {4, XK_h, XK_H},
    {5, XK_g, XK_G},
    {6, XK_z, XK_Z},
    {7, XK_x, XK_X},
    {8, XK_c, XK_C},
    {9, XK_v, XK_V},
    {10, XK_section},
    {11, XK_b, XK_B},
    {12, XK_q, XK_Q},
    {13, XK_w, XK_W},
    {14, XK_e, XK_E},
    {15, XK_r, XK_R},
    {16, XK_y, XK_Y},
    {17, XK_t, XK_T},
    {18, XK_1, XK_exclam},
    {19, XK_2, XK_at},
    {20, XK_3, XK_numbersign},
    {21, XK_4, XK_dollar},
    {22, XK_6, XK_asciicircum},
    {23, XK_5, XK_percent},
    {24, XK_equal, XK_plus},
    {25, XK_9, XK_parenleft},
    {26, XK_7, XK_ampersand},
    {27, XK_minus, XK_underscore},
    {28, XK_8, XK_asterisk},
    {29, XK_0, XK_parenright},
    {30, XK_bracketright, XK_braceright},
    {31, XK_o, XK_O},
    {32, XK_u, XK_U},
    {33, XK_bracketleft, XK_braceleft},
    {34, XK_i, XK_I},
    {35, XK_p, XK_P},
    {36, XK_Return},
    {37, XK_l, XK_L},
    {38, XK_j, XK_J},
    {39, XK_apostrophe, XK_quotedbl},
    {40, XK_k, XK_K},
    {41, XK_semicolon, XK_colon},
    {42, XK_backslash, XK_bar},
    {43, XK_comma, XK_less},
    {44, XK_slash, XK_question},
    {45, XK_n, XK_N},
    {46, XK_m, XK_M},
    {47, XK_period, XK_greater},
    {48, XK_Tab},
    {49, XK_space},
    {50, XK_grave, XK_asciitilde},
    {51, XK_BackSpace},
    {53, XK_Escape},
    {54, XK_Super_R},
    {55, XK_Super_L},
    {57, XK_Caps_Lock},
    {64, XK_F17},
    {65, XK_KP_Decimal},
    {67, XK_KP_Multiply},
    {69, XK_KP_Add},
    {71, XK_Clear},
    {75, XK_KP_Divide},
    {76, XK_KP_Enter},
    {78, XK_KP_Subtract},
    {81, XK_KP_Equal},
    {82, XK_KP_0},
    {83, XK_KP_1},
    {84, XK_KP_2},
    {85, XK_KP_3},
    {86, XK_KP_4},
    {87, XK_KP_5},
    {88, XK_KP_6},
    {89, XK_KP_7},
    {91, XK_KP_8},
    {92, XK_KP_9},
    {96, XK_F5},
    {97, XK_F6},
    {98, XK_F7},
    {99, XK_F3},
    {100, XK_F8},
    {101, XK_F9},
    {103, XK_F11},
    {105, XK_F13},
    {106, XK_F16},
    {107, XK_F14},
    {109, XK_F10},
    {111, XK_F12},
    {113, XK_F15},
    {114, XK_Help},
    {115, XK_Home},
    {116, XK_Prior},
    {117, XK_Delete},
    {118, XK_F4},
    {119, XK_End},
    {120, XK_F2},
    {121, XK_Next},
    {122, XK_F1},
    {123, XK_Left},
    {124, XK_Right},
    {125, XK_Down},
    {126, XK_Up},
};

// The modifier keys, held by their own events.
constexpr std::pair<std::uint16_t, Modifier> kModifierKeys[] = {{56, kShiftBit},   {60, kShiftBit}, {59, kControlBit},
                                                                {62, kControlBit}, {58, kAltBit},   {61, kAltBit}};

const KeyName* keyOf(std::uint16_t code) {
    for (const KeyName& k : kKeys) {
        if (k.code == code) return &k;
    }
    return nullptr;
}

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

EventSource LinuxPlatform::createEventSource(std::int32_t /*stateId*/) {
    return handOut<EventSource>(std::make_unique<KeyEvent>());
}

Event LinuxPlatform::createKeyboardEvent(const EventSource* /*source*/, std::uint16_t keyCode, bool keyDown) {
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
        paste_->answeredAtKey = x11_->clipboardDataAnswered();
        paste_->keyTime = now();
    }
    Display* display = x11_->display();
    for (const auto& [code, modifier] : kModifierKeys) {
        if (code == e->keyCode) return keyboard_.modifierKey(display, modifier, e->down);
    }
    const KeyName* key = keyOf(e->keyCode);
    if (key == nullptr) return;
    if (!e->down) return keyboard_.release(display, e->keyCode);
    if (!keyboard_.press(display, e->keyCode, KeyRequest{key->plain, key->shifted, modifiersOf(e->flags)})) {
        const bool shifted = key->shifted != NoSymbol && (modifiersOf(e->flags) & kShiftBit);
        const char* name = XKeysymToString(shifted ? key->shifted : key->plain);
        log(std::string("Keyboard: no key types '") + (name != nullptr ? name : "?") +
            "' in the current layout; the key is skipped");
    }
}

bool LinuxPlatform::typeIntoEmptyField(std::string_view text) {
    const auto locked = guard();
    std::vector<std::pair<const KeyName*, bool>> keys;  // the key, and whether shifted
    for (const char c : text) {
        const auto sym = static_cast<KeySym>(static_cast<unsigned char>(c));
        const KeyName* found = nullptr;
        bool shifted = false;
        for (const KeyName& k : kKeys) {
            // Printable ASCII characters are their own keysyms.
            if (found == nullptr && c >= 0x20 && c < 0x7f && (k.plain == sym || k.shifted == sym)) {
                found = &k;
                shifted = k.plain != sym;
            }
        }
        if (found == nullptr) return false;
        keys.emplace_back(found, shifted);
    }
    Display* display = x11_->display();
    const auto stroke = [&](const KeyName& key, Modifiers modifiers) {
        const bool pressed = keyboard_.press(display, key.code, KeyRequest{key.plain, key.shifted, modifiers});
        if (pressed) keyboard_.release(display, key.code);
        return pressed;
    };
    for (const auto& [key, shifted] : keys) {
        if (!stroke(*key, shifted ? kShiftBit : 0)) return false;
    }
    x11_->serve(0);
    return true;
}

}  // namespace zeblo::platform::linux_desktop

// Keyboard events through XTest. Key codes are the library's US key codes
// (the physical keys of a US layout); each maps to the X keysym that key
// produces without modifiers, and the flags become modifier key presses:
// shift is Shift, control and command are Control (so command-V pastes),
// option is Alt. The event marker has no X11 counterpart and is dropped.
#include <X11/keysym.h>

#include "platform/linux/linux_platform.h"
#include "platform/linux/x11_session.h"

namespace zeblo::platform::linux_desktop {

namespace {

struct KeyName {
    std::uint16_t code;
    unsigned long keysym;
};

constexpr KeyName kKeys[] = {
    {0, XK_a}, {1, XK_s}, {2, XK_d}, {3, XK_f}, {4, XK_h}, {5, XK_g}, {6, XK_z}, {7, XK_x}, {8, XK_c},
    {9, XK_v}, {10, XK_section}, {11, XK_b}, {12, XK_q}, {13, XK_w}, {14, XK_e}, {15, XK_r}, {16, XK_y},
    {17, XK_t}, {18, XK_1}, {19, XK_2}, {20, XK_3}, {21, XK_4}, {22, XK_6}, {23, XK_5}, {24, XK_equal},
    {25, XK_9}, {26, XK_7}, {27, XK_minus}, {28, XK_8}, {29, XK_0}, {30, XK_bracketright}, {31, XK_o},
    {32, XK_u}, {33, XK_bracketleft}, {34, XK_i}, {35, XK_p}, {36, XK_Return}, {37, XK_l}, {38, XK_j},
    {39, XK_apostrophe}, {40, XK_k}, {41, XK_semicolon}, {42, XK_backslash}, {43, XK_comma}, {44, XK_slash},
    {45, XK_n}, {46, XK_m}, {47, XK_period}, {48, XK_Tab}, {49, XK_space}, {50, XK_grave},
    {51, XK_BackSpace}, {53, XK_Escape}, {54, XK_Super_R}, {55, XK_Super_L}, {56, XK_Shift_L},
    {57, XK_Caps_Lock}, {58, XK_Alt_L}, {59, XK_Control_L}, {60, XK_Shift_R}, {61, XK_Alt_R},
    {62, XK_Control_R}, {64, XK_F17}, {65, XK_KP_Decimal}, {67, XK_KP_Multiply}, {69, XK_KP_Add},
    {71, XK_Clear}, {75, XK_KP_Divide}, {76, XK_KP_Enter}, {78, XK_KP_Subtract}, {81, XK_KP_Equal},
    {82, XK_KP_0}, {83, XK_KP_1}, {84, XK_KP_2}, {85, XK_KP_3}, {86, XK_KP_4}, {87, XK_KP_5}, {88, XK_KP_6},
    {89, XK_KP_7}, {91, XK_KP_8}, {92, XK_KP_9}, {96, XK_F5}, {97, XK_F6}, {98, XK_F7}, {99, XK_F3},
    {100, XK_F8}, {101, XK_F9}, {103, XK_F11}, {105, XK_F13}, {106, XK_F16}, {107, XK_F14}, {109, XK_F10},
    {111, XK_F12}, {113, XK_F15}, {114, XK_Help}, {115, XK_Home}, {116, XK_Prior}, {117, XK_Delete},
    {118, XK_F4}, {119, XK_End}, {120, XK_F2}, {121, XK_Next}, {122, XK_F1}, {123, XK_Left},
    {124, XK_Right}, {125, XK_Down}, {126, XK_Up},
};

unsigned long keysymFor(std::uint16_t code) {
    for (const KeyName& k : kKeys) {
        if (k.code == code) return k.keysym;
    }
    return NoSymbol;
}

// Modifier bits as held by postEvent.
constexpr std::uint16_t kShift = 1, kControl = 2, kAlt = 4;

std::uint16_t modifiersOf(std::uint64_t flags) {
    std::uint16_t bits = 0;
    if (flags & kEventFlagShift) bits |= kShift;
    // The command key of a keystroke is Control on this desktop.
    if (flags & (kEventFlagControl | kEventFlagCommand)) bits |= kControl;
    if (flags & kEventFlagOption) bits |= kAlt;
    return bits;
}

constexpr std::pair<std::uint16_t, unsigned long> kModifierKeys[] = {
    {kShift, XK_Shift_L}, {kControl, XK_Control_L}, {kAlt, XK_Alt_L}};

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
    const unsigned long keysym = keysymFor(e->keyCode);
    if (keysym == NoSymbol) return;
    if (e->down) {
        const std::uint16_t wanted = modifiersOf(e->flags);
        for (const auto& [bit, modifier] : kModifierKeys) {
            const bool held = (heldModifiers_ & bit) != 0;
            if ((wanted & bit) && !held) x11_->fakeKey(modifier, true);
            if (!(wanted & bit) && held) x11_->fakeKey(modifier, false);
        }
        heldModifiers_ = wanted;
        x11_->fakeKey(keysym, true);
    } else {
        x11_->fakeKey(keysym, false);
        for (const auto& [bit, modifier] : kModifierKeys) {
            if (heldModifiers_ & bit) x11_->fakeKey(modifier, false);
        }
        heldModifiers_ = 0;
    }
}

}  // namespace zeblo::platform::linux_desktop

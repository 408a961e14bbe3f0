// The library's key codes (the keys of a US keyboard, as macOS numbers
// them) and the keysyms each types on a US layout, without and with Shift.
#include "platform/linux/us_keys.h"

#include <X11/keysym.h>

namespace zeblo::platform::linux_desktop {

namespace {

constexpr UsKey kKeys[] = {
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

}  // namespace

std::span<const UsKey> usKeys() { return kKeys; }

const UsKey* usKey(std::uint16_t code) {
    for (const UsKey& k : kKeys) {
        if (k.code == code) return &k;
    }
    return nullptr;
}

}  // namespace zeblo::platform::linux_desktop

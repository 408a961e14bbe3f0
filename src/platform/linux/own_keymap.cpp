// The virtual keyboard's keymap, written out as XKB text and checked (and
// normalised) by compiling it with xkbcommon. It needs no XKB data files: the
// two key types and the one interpretation it uses are given in full.
#include "platform/linux/own_keymap.h"

#include <cstdlib>

#include "platform/linux/wayland_owned.h"

namespace zeblo::platform::linux_desktop {

namespace {

// Evdev code of the first key; XKB key codes are evdev codes plus 8.
constexpr std::uint32_t kFirstKey = 1;
constexpr const char* kModifierSyms[3] = {"Shift_L", "Control_L", "Alt_L"};
constexpr const char* kModifierNames[3] = {XKB_MOD_NAME_SHIFT, XKB_MOD_NAME_CTRL, XKB_MOD_NAME_ALT};
constexpr const char* kModifierMaps[3] = {"Shift", "Control", "Mod1"};

std::string symName(KeySym sym) {
    char name[64];
    if (xkb_keysym_get_name(static_cast<xkb_keysym_t>(sym), name, sizeof name) <= 0) return "NoSymbol";
    return name;
}

}  // namespace

std::uint32_t OwnKeymap::mask(Modifiers modifiers) const {
    std::uint32_t out = 0;
    const Modifier bits[3] = {kShiftBit, kControlBit, kAltBit};
    for (int i = 0; i < 3; ++i) {
        if (modifiers & bits[i]) out |= modifierMask[i];
    }
    return out;
}

std::optional<OwnKeymap> ownKeymap(std::span<const UsKey> keys) {
    OwnKeymap out;
    std::string codes = "xkb_keycodes \"zeblo\" {\n  minimum = 8;\n  maximum = 255;\n";
    std::string symbols = "xkb_symbols \"zeblo\" {\n";
    std::uint32_t next = kFirstKey;
    const auto addKey = [&](const std::string& symbolsOfKey) {
        const std::uint32_t evdev = next++;
        const std::string name = "<K" + std::to_string(evdev) + ">";
        codes += "  " + name + " = " + std::to_string(evdev + 8) + ";\n";
        symbols += "  key " + name + " { " + symbolsOfKey + " };\n";
        return evdev;
    };
    for (const UsKey& key : keys) {
        const std::string plain = symName(key.plain);
        out.keys[key.code] = key.shifted != 0
                                 ? addKey("type = \"TWO_LEVEL\", [ " + plain + ", " + symName(key.shifted) + " ]")
                                 : addKey("type = \"ONE_LEVEL\", [ " + plain + " ]");
    }
    for (int i = 0; i < 3; ++i) {
        out.modifierKey[i] = addKey(std::string("type = \"ONE_LEVEL\", [ ") + kModifierSyms[i] + " ]");
        symbols += std::string("  modifier_map ") + kModifierMaps[i] + " { <K" + std::to_string(out.modifierKey[i]) +
                   "> };\n";
    }
    const std::string text = "xkb_keymap {\n" + codes + "};\n" +
                             "xkb_types \"zeblo\" {\n"
                             "  type \"ONE_LEVEL\" { modifiers = none; level_name[Level1] = \"Any\"; };\n"
                             "  type \"TWO_LEVEL\" { modifiers = Shift; map[Shift] = Level2;\n"
                             "    level_name[Level1] = \"Base\"; level_name[Level2] = \"Shift\"; };\n"
                             "};\n"
                             "xkb_compat \"zeblo\" {\n"
                             "  interpret Any + AnyOf(all) { action = SetMods(modifiers = modMapMods, clearLocks); };\n"
                             "};\n" +
                             symbols + "};\n};\n";
    const XkbContext context(xkb_context_new(static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
    if (!context) return std::nullopt;
    const XkbKeymap keymap(
        xkb_keymap_new_from_string(context.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) return std::nullopt;
    for (int i = 0; i < 3; ++i) {
        const xkb_mod_index_t index = xkb_keymap_mod_get_index(keymap.get(), kModifierNames[i]);
        if (index == XKB_MOD_INVALID) return std::nullopt;
        out.modifierMask[i] = 1u << index;
    }
    const Owned<char, free> normalised(xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1));
    if (!normalised) return std::nullopt;
    out.text = normalised.get();
    return out;
}

}  // namespace zeblo::platform::linux_desktop

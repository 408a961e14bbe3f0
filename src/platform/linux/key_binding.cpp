// Key bindings ("mnemonic;path;accelerator") and key equivalents.
#include "platform/linux/key_binding.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <cctype>

#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

// Keys without a printable character, by the name zeblo_send_keystroke takes
// for them (the names of src/ops/keyboard's key table).
constexpr std::pair<KeySym, const char*> kNamedKeys[] = {
    {XK_Return, "\n"},
    {XK_Tab, "\t"},
    {XK_BackSpace, "\b"},
    {XK_Escape, "\x1b"},
    {XK_Left, "left"},
    {XK_Right, "right"},
    {XK_Up, "up"},
    {XK_Down, "down"},
    {XK_Home, "home"},
    {XK_End, "end"},
    {XK_Page_Up, "pageup"},
    {XK_Page_Down, "pagedown"},
    {XK_Delete, "forwarddelete"},
};

// The key equivalent of an X key name ("plus", "Page_Up", "F5", "n"): the
// character the key types where it has one (a letter upper-cased), else the
// key's name for a keystroke; nothing for a key a keystroke cannot press.
std::optional<std::string> keyOfName(const std::string& name) {
    const KeySym keysym = XStringToKeysym(name.c_str());
    if (keysym == NoSymbol) return std::nullopt;
    if (keysym >= XK_space && keysym <= XK_asciitilde) {
        return std::string(1, static_cast<char>(std::toupper(static_cast<int>(keysym))));
    }
    if (keysym >= XK_F1 && keysym <= XK_F12) return "F" + std::to_string(keysym - XK_F1 + 1);
    for (const auto& [sym, key] : kNamedKeys) {
        if (sym == keysym) return std::string(key);
    }
    return std::nullopt;
}

}  // namespace

const std::string& keyBindingOf(Node& node, const Survey::Item* item) {
    if (node.keyBinding) return *node.keyBinding;
    if (item != nullptr) {
        if (const std::string* known = node.survey->keyBinding(node.object.get())) {
            return node.keyBinding.emplace(*known);
        }
    }
    std::string binding;
    const Ref<AtspiAction> action = item != nullptr && !item->hasAction
                                        ? Ref<AtspiAction>()
                                        : Ref<AtspiAction>::adopt(atspi_accessible_get_action_iface(node.object.get()));
    if (action) {
        Error error;
        binding = takeText(atspi_action_get_key_binding(action.get(), 0, out(error)));
        if (error) binding.clear();  // no action at all
    }
    return node.keyBinding.emplace(std::move(binding));
}

std::optional<std::pair<std::string, std::int64_t>> keyEquivalent(const std::string& binding) {
    // "mnemonic;path;accelerator", e.g. "n;<Alt>f:n;<Primary>n".
    const std::size_t last = binding.rfind(';');
    std::string accel = last == std::string::npos ? binding : binding.substr(last + 1);
    if (accel.empty()) return std::nullopt;
    std::int64_t modifiers = 8;
    bool command = false;
    while (!accel.empty() && accel.front() == '<') {
        const std::size_t close = accel.find('>');
        if (close == std::string::npos) break;
        const std::string mod = accel.substr(1, close - 1);
        accel.erase(0, close + 1);
        if (mod == "Primary" || mod == "Control" || mod == "Ctrl") command = true;
        if (mod == "Shift") modifiers |= 1;
        if (mod == "Alt" || mod == "Mod1") modifiers |= 2;
        if (mod == "Super" || mod == "Meta") modifiers |= 4;
    }
    if (command) modifiers &= ~std::int64_t{8};
    std::optional<std::string> key = keyOfName(accel);
    if (!key) return std::nullopt;
    return std::make_pair(std::move(*key), modifiers);
}

}  // namespace zeblo::platform::linux_desktop

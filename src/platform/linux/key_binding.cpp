// Key bindings (GTK's "mnemonic;path;accelerator", Qt's "Ctrl+N") and key
// equivalents.
#include "platform/linux/key_binding.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>

#include <algorithm>
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

// Qt's key names that X names otherwise.
constexpr std::pair<const char*, const char*> kQtKeyNames[] = {
    {"PgUp", "Page_Up"}, {"PgDown", "Page_Down"},    {"Del", "Delete"}, {"Esc", "Escape"},
    {"Enter", "Return"}, {"Backspace", "BackSpace"}, {"Ins", "Insert"}, {"Space", "space"},
};

// Qt gives its shortcuts as "Ctrl+Shift+W" (several separated by ", "), GTK as
// "mnemonic;path;<Control><Shift>w" or a bare key name.
bool isQtBinding(const std::string& binding) {
    return binding.find('<') == std::string::npos && binding.find(';') == std::string::npos && binding.size() > 1 &&
           binding.find('+', 1) != std::string::npos;
}

std::optional<std::pair<std::string, std::int64_t>> qtKeyEquivalent(const std::string& binding) {
    std::string first = binding.substr(0, binding.find(", "));
    // The key is after the last "+", unless the key is "+" itself ("Ctrl++").
    const bool plus = first.size() >= 2 && first.compare(first.size() - 2, 2, "++") == 0;
    const std::size_t split = plus ? first.size() - 2 : first.rfind('+');
    std::string key = plus ? "+" : first.substr(split + 1);
    std::int64_t modifiers = 8;
    std::size_t from = 0;
    while (from < split) {
        const std::size_t end = std::min(first.find('+', from), split);
        const std::string mod = first.substr(from, end - from);
        if (mod == "Ctrl") modifiers &= ~std::int64_t{8};
        if (mod == "Shift") modifiers |= 1;
        if (mod == "Alt") modifiers |= 2;
        if (mod == "Meta") modifiers |= 4;
        from = end + 1;
    }
    if (key.size() == 1 && key[0] > ' ' && key[0] < 0x7f) {
        return std::make_pair(std::string(1, static_cast<char>(std::toupper(static_cast<unsigned char>(key[0])))),
                              modifiers);
    }
    if (key == "Backtab") {  // Qt's name for Shift-Tab
        key = "Tab";
        modifiers |= 1;
    }
    for (const auto& [qt, x] : kQtKeyNames) {
        if (key == qt) key = x;
    }
    std::optional<std::string> named = keyOfName(key);
    if (!named) return std::nullopt;
    return std::make_pair(std::move(*named), modifiers);
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

bool isQtMnemonic(const std::string& binding, const std::string& title) {
    if (binding.size() != 5 || binding.compare(0, 4, "Alt+") != 0) return false;
    const auto lower = [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); };
    return std::any_of(title.begin(), title.end(), [&](char c) { return lower(c) == lower(binding[4]); });
}

std::optional<std::pair<std::string, std::int64_t>> keyEquivalent(const std::string& binding) {
    if (isQtBinding(binding)) return qtKeyEquivalent(binding);
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

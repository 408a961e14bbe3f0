// Key bindings ("mnemonic;path;accelerator") and key equivalents.
#include "platform/linux/key_binding.h"

#include <cctype>

#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

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
    if (accel.empty()) return std::nullopt;
    if (accel.size() == 1) accel[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(accel[0])));
    return std::make_pair(accel, modifiers);
}

}  // namespace zeblo::platform::linux_desktop

// State attributes: "AXEnabled", and menu items' check mark and key
// equivalent.
#include "platform/ax_names.h"
#include "platform/linux/attributes.h"
#include "platform/linux/key_binding.h"

namespace zeblo::platform::linux_desktop {

bool isMenuItemRole(AtspiRole role) {
    return role == ATSPI_ROLE_MENU || role == ATSPI_ROLE_MENU_ITEM || role == ATSPI_ROLE_CHECK_MENU_ITEM ||
           role == ATSPI_ROLE_RADIO_MENU_ITEM;
}

std::optional<AttributeRead> readState(const Reading& r, std::string_view attribute) {
    if (attribute == ax::kEnabledAttribute) return ok(r.has(ATSPI_STATE_SENSITIVE));
    if (attribute == ax::kFocusedAttribute) return ok(r.has(ATSPI_STATE_FOCUSED));
    // Selection and expansion only for the elements that can have them.
    if (attribute == ax::kSelectedAttribute) return r.has(ATSPI_STATE_SELECTABLE) ? ok(r.has(ATSPI_STATE_SELECTED)) : unsupported();
    if (attribute == ax::kExpandedAttribute) return r.has(ATSPI_STATE_EXPANDABLE) ? ok(r.has(ATSPI_STATE_EXPANDED)) : unsupported();
    if (!isMenuItemRole(r.role)) return std::nullopt;
    if (attribute == ax::kMenuItemMarkCharAttribute) {
        if (r.has(ATSPI_STATE_CHECKED)) return ok(std::string("\xE2\x9C\x93"));  // ✓
        return ok(std::monostate{});
    }
    if (attribute == ax::kMenuItemCmdCharAttribute || attribute == ax::kMenuItemCmdModifiersAttribute) {
        if (r.role == ATSPI_ROLE_MENU) return ok(std::monostate{});
        const std::string& binding = keyBindingOf(r.node, r.item);
        if (isQtMnemonic(binding, r.name())) return ok(std::monostate{});
        auto key = keyEquivalent(binding);
        if (!key) return ok(std::monostate{});
        if (attribute == ax::kMenuItemCmdCharAttribute) return ok(std::move(key->first));
        return ok(key->second);
    }
    return std::nullopt;
}

}  // namespace zeblo::platform::linux_desktop

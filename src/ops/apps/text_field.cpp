// Whether the keyboard focus, wherever it is on the desktop, is in an element
// that takes text. Only the focused element's role is examined.
#include <algorithm>
#include <array>
#include <string_view>

#include "ops/apps/app_ops.h"
#include "platform/ax_names.h"
#include "platform/platform.h"

namespace zeblo {
namespace {

// Roles that take typed text. A password field is deliberately not among them.
constexpr std::array<std::string_view, 4> kTextRoles = {ax::kTextFieldRole, ax::kTextAreaRole, ax::kComboBoxRole,
                                                        ax::kSearchFieldRole};

}  // namespace

bool AppOps::isInTextField() {
    const lookup::FocusedElement focused = lookup::focusedElement();
    if (!focused.element) return false;
    const auto role = platform::asString(platform::current().copyAttributeValue(focused.element, ax::kRoleAttribute));
    if (!role.ok()) return false;
    return std::find(kTextRoles.begin(), kTextRoles.end(), role.value) != kTextRoles.end();
}

}  // namespace zeblo

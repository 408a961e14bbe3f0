// Identity attributes: "AXRole", "AXTitle", "AXDescription".
#include "platform/linux/accessible.h"
#include "platform/linux/attributes.h"

namespace zeblo::platform::linux_desktop {

bool Reading::has(AtspiStateType state) const {
    return item != nullptr ? ((item->states >> state) & 1) != 0 : hasState(object, state);
}

std::string Reading::name(bool* good) const {
    if (item == nullptr) return nameOf(object, good);
    if (good != nullptr) *good = true;
    return item->name;
}

bool Reading::textInChildren() const {
    if (role != ATSPI_ROLE_HEADING && role != ATSPI_ROLE_PARAGRAPH) return false;
    if (item != nullptr && item->childCount >= 0) return item->childCount > 0;
    Error error;
    return atspi_accessible_get_child_count(object, out(error)) > 0 && !error;
}

std::optional<AttributeRead> readIdentity(const Reading& r, std::string_view attribute) {
    if (attribute == "AXRole") return ok(axRole(r.node));
    if (attribute == "AXTitle") {
        // Labels and texts have their text as value, not as title.
        if (r.role == ATSPI_ROLE_LABEL || r.role == ATSPI_ROLE_STATIC || isTextRole(r.role)) return unsupported();
        if (r.textInChildren()) return ok(std::string());
        bool good = false;
        std::string title = r.name(&good);
        if (!good) return AttributeRead{kAXErrorCannotComplete, {}};
        // A checklist's check box has no name of its own: the row's text
        // names it.
        if (title.empty() && r.role == ATSPI_ROLE_CHECK_BOX) title = rowNameOf(r.object);
        return ok(std::move(title));
    }
    if (attribute == "AXDescription") {
        std::string description;
        if (r.item != nullptr) {
            description = r.item->description;
        } else {
            Error error;
            description = takeText(atspi_accessible_get_description(r.object, out(error)));
            if (error) return AttributeRead{kAXErrorCannotComplete, {}};
        }
        if (description.empty()) return ok(std::monostate{});
        return ok(std::move(description));
    }
    return std::nullopt;
}

}  // namespace zeblo::platform::linux_desktop

// Identity attributes: "AXRole", "AXTitle", "AXDescription".
#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/attributes.h"

namespace zeblo::platform::linux_desktop {

bool Reading::has(AtspiStateType state) const {
    return item != nullptr ? ((item->states >> state) & 1) != 0 : hasState(object, state);
}

namespace {

// Whether `name` is the name of a GTK class ("GtkMenuButton", "AdwGizmo"),
// which GTK 4 gives an element that has no name of its own.
bool isClassName(std::string_view name) {
    for (const std::string_view prefix : {"Gtk", "Adw", "Gsk", "Gdk"}) {
        if (name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
            g_ascii_isupper(name[prefix.size()]) &&
            name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") ==
                std::string_view::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string Reading::name(bool* good) const {
    std::string read;
    if (item == nullptr) {
        read = nameOf(object, good);
    } else {
        if (good != nullptr) *good = true;
        read = item->name;
    }
    if (isClassName(read) && platform.applicationSight(object) == Sight::sized) read.clear();
    return read;
}

bool Reading::textInChildren() const {
    if (role != ATSPI_ROLE_HEADING && role != ATSPI_ROLE_PARAGRAPH) return false;
    return childCount() > 0;
}

int Reading::childCount() const {
    if (item != nullptr && item->childCount >= 0) return item->childCount;
    Error error;
    const int count = atspi_accessible_get_child_count(object, out(error));
    return error ? -1 : count;
}

std::optional<AttributeRead> readIdentity(const Reading& r, std::string_view attribute) {
    if (attribute == ax::kRoleAttribute) return ok(axRole(r.node));
    if (attribute == ax::kNameAttribute) return ok(r.name());
    if (attribute == ax::kPlaceholderValueAttribute) {
        if (!isTextRole(r.role)) return unsupported();
        const HashTable attributes(atspi_accessible_get_attributes(r.object, nullptr));
        const char* hint = attributes ? static_cast<const char*>(g_hash_table_lookup(attributes.get(), "placeholder-text"))
                                      : nullptr;
        return ok(std::string(hint != nullptr ? hint : ""));
    }
    if (attribute == ax::kTitleAttribute) {
        // Labels and texts have their text as value, not as title.
        if (r.role == ATSPI_ROLE_LABEL || r.role == ATSPI_ROLE_STATIC || isTextRole(r.role)) return unsupported();
        if (r.textInChildren()) return ok(std::string());
        bool good = false;
        std::string title = r.name(&good);
        if (!good) return AttributeRead{kAXErrorCannotComplete, {}};
        // GTK 3 pads a menu item's name where its accelerator is shown
        // ("Select All      "): the item reads as its menu shows it.
        if (isMenuItemRole(r.role)) {
            title.erase(title.find_last_not_of(' ') + 1);
            title.erase(0, title.find_first_not_of(' '));
        }
        // A checklist's check box has no name of its own: the row's text
        // names it.
        if (title.empty() && r.role == ATSPI_ROLE_CHECK_BOX) title = rowNameOf(r.object);
        return ok(std::move(title));
    }
    if (attribute == ax::kDescriptionAttribute) {
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

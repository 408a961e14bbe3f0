// Live reads of AtspiAccessible objects: names, roles, states, texts,
// children and Collection matches.
#include "platform/linux/accessible.h"

#include "core/unicode.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/tree_search.h"

namespace zeblo::platform::linux_desktop {

namespace {

// The first match of `rule` in `collection` (one round trip), or null.
AccessibleRef firstMatch(AtspiCollection* collection, AtspiMatchRule* rule) {
    Error error;
    std::vector<AccessibleRef> matches = takeAccessibles(
        atspi_collection_get_matches(collection, rule, ATSPI_Collection_SORT_ORDER_CANONICAL, 1, TRUE, out(error)));
    return matches.empty() ? AccessibleRef() : std::move(matches.front());
}

}  // namespace

AtspiRole roleOfObject(AtspiAccessible* object) {
    Error error;
    const AtspiRole role = atspi_accessible_get_role(object, out(error));
    return error ? ATSPI_ROLE_INVALID : role;
}

std::string nameOf(AtspiAccessible* object, bool* ok) {
    Error error;
    std::string name = takeText(atspi_accessible_get_name(object, out(error)));
    if (ok != nullptr) *ok = error == nullptr;
    return name;
}

std::optional<std::string> textContents(AtspiAccessible* object) {
    const Ref<AtspiText> text = Ref<AtspiText>::adopt(atspi_accessible_get_text_iface(object));
    if (!text) return std::nullopt;
    Error error;
    Text contents(atspi_text_get_text(text.get(), 0, -1, out(error)));
    if (error) return std::nullopt;
    return takeText(contents.release());
}

std::string firstActionOf(AtspiAccessible* object) {
    const Ref<AtspiAction> action = Ref<AtspiAction>::adopt(atspi_accessible_get_action_iface(object));
    if (!action) return {};
    Error error;
    std::string name = takeText(atspi_action_get_action_name(action.get(), 0, out(error)));
    return error ? std::string() : name;
}

std::string rowNameOf(AtspiAccessible* cell) {
    // The row is asked of the table (GTK fails the cell's own Position for
    // its first cell).
    Error error;
    const AccessibleRef owner = AccessibleRef::adopt(atspi_accessible_get_parent(cell, out(error)));
    const gint index = error ? -1 : atspi_accessible_get_index_in_parent(cell, out(error));
    const Ref<AtspiTable> table =
        Ref<AtspiTable>::adopt(owner && !error ? atspi_accessible_get_table_iface(owner.get()) : nullptr);
    if (!table || index < 0) return {};
    const gint row = atspi_table_get_row_at_index(table.get(), index, out(error));
    const gint column = error ? -1 : atspi_table_get_column_at_index(table.get(), index, out(error));
    const gint columns = error ? 0 : atspi_table_get_n_columns(table.get(), out(error));
    for (gint c = 0; !error && c < columns; ++c) {
        if (c == column) continue;
        const AccessibleRef other =
            AccessibleRef::adopt(atspi_table_get_accessible_at(table.get(), row, c, out(error)));
        std::string name = other && !error ? nameOf(other.get()) : std::string();
        if (!name.empty()) return name;
    }
    return {};
}

AccessibleRef findByRole(AtspiAccessible* root, AtspiRole role) {
    const Ref<AtspiCollection> collection = Ref<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(root));
    if (!collection) {
        // Menus are not looked into: they hold many items and no menu bar,
        // combo box part or window part.
        return searchTree(
            root, [role](const Glance& g) { return g.role == role; },
            [](const Glance& g) {
                return g.has(ATSPI_STATE_SHOWING) && g.role != ATSPI_ROLE_MENU && g.role != ATSPI_ROLE_POPUP_MENU &&
                       g.role != ATSPI_ROLE_MENU_BAR;
            });
    }
    const Array roles(g_array_new(FALSE, FALSE, sizeof(AtspiRole)));
    g_array_append_val(roles.get(), role);
    const Ref<AtspiMatchRule> rule = Ref<AtspiMatchRule>::adopt(
        atspi_match_rule_new(nullptr, ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, roles.get(),
                             ATSPI_Collection_MATCH_ANY, nullptr, ATSPI_Collection_MATCH_ALL, FALSE));
    return firstMatch(collection.get(), rule.get());
}

AccessibleRef findFocused(AtspiAccessible* root) {
    const Ref<AtspiCollection> collection = Ref<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(root));
    if (!collection) {
        // The focus is inside showing elements only.
        const auto showing = [](const Glance& g) { return g.has(ATSPI_STATE_SHOWING); };
        return searchTree(
            root, [&](const Glance& g) { return showing(g) && g.has(ATSPI_STATE_FOCUSED); }, showing);
    }
    const Ref<AtspiStateSet> states = Ref<AtspiStateSet>::adopt(atspi_state_set_new(nullptr));
    atspi_state_set_add(states.get(), ATSPI_STATE_FOCUSED);
    atspi_state_set_add(states.get(), ATSPI_STATE_SHOWING);  // closed menus keep a stale focus
    const Ref<AtspiMatchRule> rule = Ref<AtspiMatchRule>::adopt(
        atspi_match_rule_new(states.get(), ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, nullptr,
                             ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, FALSE));
    return firstMatch(collection.get(), rule.get());
}

std::vector<AccessibleRef> windowsOf(AtspiAccessible* app) {
    std::vector<AccessibleRef> windows;
    for (AccessibleRef& child : childrenOf(app)) {
        if (!child) continue;
        const AtspiRole role = roleOfObject(child.get());
        // Qt gives a window that is a plain widget (no main window, no
        // dialog) the filler role; it counts when it has a title.
        const bool needsName = role == ATSPI_ROLE_WINDOW || role == ATSPI_ROLE_FILLER;
        const bool keep = (isWindowRole(role) || role == ATSPI_ROLE_FILLER) &&
                          hasState(child.get(), ATSPI_STATE_SHOWING) && (!needsName || !nameOf(child.get()).empty());
        if (keep) {
            windows.push_back(std::move(child));
        } else {
            child.reset();
        }
    }
    return windows;
}

// ---------------------------------------------------------------------------
// The helpers linux_platform.h declares.

std::string takeText(char* text) {
    const Text owned(text);
    if (!owned) return {};
    return text::decodeUtf8Lossy(owned.get());
}

bool hasState(AtspiAccessible* object, AtspiStateType state) {
    const Ref<AtspiStateSet> set = Ref<AtspiStateSet>::adopt(atspi_accessible_get_state_set(object));
    if (!set) return false;
    return atspi_state_set_contains(set.get(), state) != 0;
}

std::vector<AccessibleRef> childrenOf(AtspiAccessible* object) {
    std::vector<AccessibleRef> children;
    Error error;
    const int count = atspi_accessible_get_child_count(object, out(error));
    if (error || count <= 0) return children;
    children.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        AccessibleRef child = AccessibleRef::adopt(atspi_accessible_get_child_at_index(object, i, out(error)));
        if (error) child.reset();
        children.push_back(std::move(child));
    }
    return children;
}

// libatspi 2.46 has no public accessor for an object's D-Bus address (its
// application's unique bus name, its path and the connection libatspi talks
// to it on): these three are the backend's only reads of its structures.
const char* busOf(AtspiAccessible* object) {
    const AtspiObject* o = ATSPI_OBJECT(object);
    return o->app != nullptr ? o->app->bus_name : nullptr;
}

std::string pathOf(AtspiAccessible* object) {
    const char* path = ATSPI_OBJECT(object)->path;
    return path != nullptr ? path : "";
}

DBusConnection* connectionOf(AtspiAccessible* object) {
    const AtspiObject* o = ATSPI_OBJECT(object);
    return o->app != nullptr ? o->app->bus : nullptr;
}

}  // namespace zeblo::platform::linux_desktop

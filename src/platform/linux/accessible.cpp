// Live reads of AtspiAccessible objects: names, roles, states, texts,
// children and Collection matches.
#include "platform/linux/accessible.h"

#include <chrono>

#include "core/unicode.h"
#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"
#include "platform/linux/tree_search.h"
#include "platform/reply_limit.h"

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

namespace {

// Whether a call that started at `start` and failed took the whole reply
// limit: then no answer came, which is not a refusal.
bool timedOut(std::chrono::steady_clock::time_point start) {
    return std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(replyLimitMs());
}

}  // namespace

AtspiRole roleOfObject(AtspiAccessible* object, bool* answered) {
    Error error;
    const auto start = std::chrono::steady_clock::now();
    const AtspiRole role = atspi_accessible_get_role(object, out(error));
    if (answered != nullptr) *answered = !error || !timedOut(start);
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

// Actions are asked of the application itself: libatspi decides whether an
// element has actions from the interfaces it noted when it first met the
// element, which can be wrong for one made a moment before (a web page's).
// The names are the actions' own (GetName), not the localized ones.
namespace {

Message actionCall(const char* bus, const char* path, const char* member, std::optional<dbus_int32_t> index) {
    Message call = methodCall(bus, path, "org.a11y.atspi.Action", member);
    if (call && index && !dbus_message_append_args(call.get(), DBUS_TYPE_INT32, &*index, DBUS_TYPE_INVALID)) {
        call.reset();
    }
    return call;
}

}  // namespace

std::vector<std::optional<std::vector<std::string>>> actionNamesAt(DBusConnection* connection, const char* bus,
                                                                    const std::vector<const std::string*>& paths) {
    // Names, not GetActions: its answer holds the localized names, which are
    // translated (GTK) or empty (Chromium).
    std::vector<std::optional<std::vector<std::string>>> out(paths.size());
    std::vector<Message> counts;
    counts.reserve(paths.size());
    for (const std::string* path : paths) {
        counts.push_back(propertyCall(bus, path->c_str(), "org.a11y.atspi.Action", "NActions"));
    }
    const std::vector<Message> counted = callAll(connection, counts);
    std::vector<Message> calls;
    std::vector<std::size_t> owner;  // the path each name call is about
    for (std::size_t k = 0; k < paths.size(); ++k) {
        dbus_int32_t n = 0;
        if (isErrorAnswer(counted[k])) out[k].emplace();  // no Action interface
        if (!int32Answer(counted[k], &n)) continue;
        out[k].emplace();
        for (dbus_int32_t i = 0; i < n && i < 64; ++i) {
            calls.push_back(actionCall(bus, paths[k]->c_str(), "GetName", i));
            owner.push_back(k);
        }
    }
    const std::vector<Message> answers = callAll(connection, calls);
    for (std::size_t c = 0; c < answers.size(); ++c) {
        std::optional<std::vector<std::string>>& names = out[owner[c]];
        if (!names) continue;
        if (const char* name = stringAnswer(answers[c])) {
            names->emplace_back(name);
        } else {
            names.reset();
        }
    }
    return out;
}

std::optional<std::vector<std::string>> actionNamesOf(AtspiAccessible* object) {
    const char* bus = busOf(object);
    if (bus == nullptr) return std::nullopt;
    const std::string path = pathOf(object);
    return std::move(actionNamesAt(connectionOf(object), bus, {&path}).front());
}

ActionRun runAction(AtspiAccessible* object, int index) {
    const char* bus = busOf(object);
    if (bus == nullptr) return ActionRun::refused;
    std::vector<Message> call;
    call.push_back(actionCall(bus, pathOf(object).c_str(), "DoAction", index));
    if (!call.front()) return ActionRun::refused;
    const Message answer = std::move(callAll(connectionOf(object), call).front());
    if (!answer) return ActionRun::unanswered;
    bool done = false;
    return booleanAnswer(answer, &done) && done ? ActionRun::done : ActionRun::refused;
}

std::string firstActionOf(AtspiAccessible* object) {
    const char* bus = busOf(object);
    if (bus == nullptr) return {};
    std::vector<Message> call;
    call.push_back(actionCall(bus, pathOf(object).c_str(), "GetName", 0));
    const char* name = stringAnswer(callAll(connectionOf(object), call).front());
    return name != nullptr ? name : "";
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

AccessibleRef findByRole(AtspiAccessible* root, AtspiRole role, Sight sight) {
    const Ref<AtspiCollection> collection = Ref<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(root));
    if (!collection) {
        // Menus are not looked into: they hold many items and no menu bar,
        // combo box part or window part.
        return searchTree(
            root, [role](const Glance& g) { return g.role == role; },
            [sight](const Glance& g) {
                return shown(sight, g.states, std::nullopt) && g.role != ATSPI_ROLE_MENU &&
                       g.role != ATSPI_ROLE_POPUP_MENU && g.role != ATSPI_ROLE_MENU_BAR;
            });
    }
    const Array roles(g_array_new(FALSE, FALSE, sizeof(AtspiRole)));
    g_array_append_val(roles.get(), role);
    const Ref<AtspiMatchRule> rule = Ref<AtspiMatchRule>::adopt(
        atspi_match_rule_new(nullptr, ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, roles.get(),
                             ATSPI_Collection_MATCH_ANY, nullptr, ATSPI_Collection_MATCH_ALL, FALSE));
    return firstMatch(collection.get(), rule.get());
}

AccessibleRef findFocused(AtspiAccessible* root, Sight sight) {
    // Focusable elements rank above the others; of equal ranks the first
    // met wins.
    const auto rank = [](std::uint64_t states) { return ((states >> ATSPI_STATE_FOCUSABLE) & 1) != 0 ? 2 : 1; };
    const Ref<AtspiCollection> collection = Ref<AtspiCollection>::adopt(atspi_accessible_get_collection_iface(root));
    if (!collection) {
        const auto seen = [sight](const Glance& g) { return shown(sight, g.states, std::nullopt); };
        return searchBest(
            root, [&](const Glance& g) { return seen(g) && g.has(ATSPI_STATE_FOCUSED) ? rank(g.states) : 0; }, seen);
    }
    const Ref<AtspiStateSet> states = Ref<AtspiStateSet>::adopt(atspi_state_set_new(nullptr));
    atspi_state_set_add(states.get(), ATSPI_STATE_FOCUSED);
    if (sight == Sight::showing) atspi_state_set_add(states.get(), ATSPI_STATE_SHOWING);  // closed menus keep a stale focus
    const Ref<AtspiMatchRule> rule = Ref<AtspiMatchRule>::adopt(
        atspi_match_rule_new(states.get(), ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, nullptr,
                             ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL, FALSE));
    Error error;
    std::vector<AccessibleRef> matches = takeAccessibles(atspi_collection_get_matches(
        collection.get(), rule.get(), ATSPI_Collection_SORT_ORDER_CANONICAL, 0, TRUE, out(error)));
    if (matches.size() <= 1) return matches.empty() ? AccessibleRef() : std::move(matches.front());
    std::size_t best = 0;
    int bestRank = 0;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        const std::optional<std::uint64_t> bits = statesOf(matches[i].get());
        const int r = bits && shown(sight, *bits, std::nullopt) ? rank(*bits) : 0;
        if (r > bestRank) {
            best = i;
            bestRank = r;
        }
    }
    return bestRank > 0 ? std::move(matches[best]) : AccessibleRef();
}

namespace {

// The children of `object` asked for in one call, which waits at most the
// reply limit (libatspi answers an application's child count from what it
// read when the application registered); nothing when no answer came.
std::optional<std::vector<AccessibleRef>> childrenAsked(AtspiAccessible* object) {
    const char* bus = busOf(object);
    if (_atspi_ref_accessible == nullptr || bus == nullptr) {
        bool answered = true;
        std::vector<AccessibleRef> children = childrenOf(object, &answered);
        return answered ? std::optional(std::move(children)) : std::nullopt;
    }
    std::vector<Message> call;
    call.push_back(methodCall(bus, pathOf(object).c_str(), "org.a11y.atspi.Accessible", "GetChildren"));
    const auto start = std::chrono::steady_clock::now();
    const std::optional<std::vector<Reference>> references = referencesAnswer(callAll(connectionOf(object), call).front());
    if (!references) {
        if (timedOut(start)) return std::nullopt;
        return std::vector<AccessibleRef>{};  // refused: gone, or it has none
    }
    std::vector<AccessibleRef> children;
    for (const auto& [childBus, childPath] : *references) {
        children.push_back(AccessibleRef::adopt(_atspi_ref_accessible(childBus.c_str(), childPath.c_str())));
    }
    return children;
}

}  // namespace

std::optional<std::vector<AccessibleRef>> windowsOf(AtspiAccessible* app, Sight sight) {
    std::optional<std::vector<AccessibleRef>> children = childrenAsked(app);
    if (!children) return std::nullopt;
    std::vector<AccessibleRef> windows;
    for (AccessibleRef& child : *children) {
        if (!child) continue;
        const AtspiRole role = roleOfObject(child.get());
        // Qt gives a window that is a plain widget (no main window, no
        // dialog) the filler role; it counts when it has a title.
        const bool needsName = role == ATSPI_ROLE_WINDOW || role == ATSPI_ROLE_FILLER;
        if (!isWindowRole(role) && role != ATSPI_ROLE_FILLER) continue;
        const std::optional<std::uint64_t> states = statesOf(child.get());
        if (!states || !shown(sight, *states, std::nullopt)) continue;
        if (needsName && nameOf(child.get()).empty()) continue;
        windows.push_back(std::move(child));
    }
    return windows;
}

std::vector<AccessibleRef> popupsOf(AtspiAccessible* app) {
    std::vector<AccessibleRef> popups;
    for (AccessibleRef& child : childrenAsked(app).value_or(std::vector<AccessibleRef>{})) {
        if (!child) continue;
        const AtspiRole role = roleOfObject(child.get());
        const bool menu = role == ATSPI_ROLE_POPUP_MENU || role == ATSPI_ROLE_MENU;
        if (!menu && !(role == ATSPI_ROLE_WINDOW && nameOf(child.get()).empty())) continue;
        const std::optional<std::uint64_t> states = statesOf(child.get());
        if (states && ((*states >> ATSPI_STATE_SHOWING) & 1) != 0) popups.push_back(std::move(child));
    }
    return popups;
}

std::optional<std::uint64_t> statesOf(AtspiAccessible* object) {
    // Asked of the application itself: libatspi may answer from a state set
    // it kept since the element was made (a web page's button before the
    // page was laid out).
    const char* bus = busOf(object);
    if (bus == nullptr) return std::nullopt;
    std::vector<Message> call;
    call.push_back(methodCall(bus, pathOf(object).c_str(), "org.a11y.atspi.Accessible", "GetState"));
    const std::optional<std::vector<std::uint32_t>> words = uint32sAnswer(callAll(connectionOf(object), call).front());
    if (!words) return std::nullopt;
    std::uint64_t bits = 0;
    for (std::size_t word = 0; word < words->size() && word < 2; ++word) {
        bits |= std::uint64_t{(*words)[word]} << (32 * word);
    }
    return bits;
}

std::optional<ScreenBox> screenBoxOf(AtspiAccessible* object) {
    const Ref<AtspiComponent> component = Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(object));
    if (!component) return std::nullopt;
    Error error;
    const Owned<AtspiRect, g_free> box(atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, out(error)));
    if (error || !box || box->width <= 0 || box->height <= 0) return std::nullopt;
    return ScreenBox{box->x, box->y, box->width, box->height};
}

std::optional<Box> boxOf(AtspiAccessible* object) {
    const Ref<AtspiComponent> component = Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(object));
    if (!component) return std::nullopt;
    Error error;
    const Owned<AtspiRect, g_free> box(atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_WINDOW, out(error)));
    if (error || !box) return std::nullopt;
    return Box{box->x, box->y, box->width, box->height};
}

std::optional<Size> sizeOf(AtspiAccessible* object) {
    const Ref<AtspiComponent> component = Ref<AtspiComponent>::adopt(atspi_accessible_get_component_iface(object));
    if (!component) return std::nullopt;
    Error error;
    const Owned<AtspiRect, g_free> box(atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_WINDOW, out(error)));
    if (error || !box) return std::nullopt;
    return Size{box->width, box->height};
}

// ---------------------------------------------------------------------------
// The helpers linux_platform.h declares.

std::string takeText(char* text) {
    const Text owned(text);
    if (!owned) return {};
    return text::decodeUtf8Lossy(owned.get());
}

bool hasState(AtspiAccessible* object, AtspiStateType state) {
    const std::optional<std::uint64_t> states = statesOf(object);
    return states && ((*states >> state) & 1) != 0;
}

std::vector<AccessibleRef> childrenOf(AtspiAccessible* object, bool* answered) {
    std::vector<AccessibleRef> children;
    Error error;
    const auto start = std::chrono::steady_clock::now();
    const int count = atspi_accessible_get_child_count(object, out(error));
    if (answered != nullptr) *answered = !error || !timedOut(start);
    if (error || count <= 0) return children;
    children.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const auto asked = std::chrono::steady_clock::now();
        AccessibleRef child = AccessibleRef::adopt(atspi_accessible_get_child_at_index(object, i, out(error)));
        if (error && timedOut(asked)) {
            // The application has gone silent: the rest would wait as long.
            if (answered != nullptr) *answered = false;
            children.clear();
            return children;
        }
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

// Elements and attributes over libatspi: the mapping from AT-SPI roles,
// states and interfaces to the attribute names the library reads (see
// docs/linux-backend.md).
#include <algorithm>
#include <cctype>

#include "platform/linux/linux_platform.h"
#include "platform/linux/x11_session.h"
#include "core/unicode.h"

namespace zeblo::platform::linux_desktop {

namespace {

// Frees a GError and tells whether there was one.
bool failed(GError*& error) {
    if (error == nullptr) return false;
    g_error_free(error);
    error = nullptr;
    return true;
}

struct RoleName {
    AtspiRole role;
    const char* name;
};

constexpr RoleName kRoles[] = {
    {ATSPI_ROLE_APPLICATION, "AXApplication"},  {ATSPI_ROLE_FRAME, "AXWindow"},
    {ATSPI_ROLE_DIALOG, "AXWindow"},            {ATSPI_ROLE_FILE_CHOOSER, "AXWindow"},
    {ATSPI_ROLE_ALERT, "AXWindow"},             {ATSPI_ROLE_COLOR_CHOOSER, "AXWindow"},
    {ATSPI_ROLE_WINDOW, "AXWindow"},            {ATSPI_ROLE_MENU_BAR, "AXMenuBar"},
    {ATSPI_ROLE_MENU_ITEM, "AXMenuItem"},       {ATSPI_ROLE_CHECK_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_RADIO_MENU_ITEM, "AXMenuItem"}, {ATSPI_ROLE_TEAROFF_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_PUSH_BUTTON, "AXButton"},       {ATSPI_ROLE_PUSH_BUTTON_MENU, "AXButton"},
    {ATSPI_ROLE_CHECK_BOX, "AXCheckBox"},       {ATSPI_ROLE_TOGGLE_BUTTON, "AXCheckBox"},
    {ATSPI_ROLE_RADIO_BUTTON, "AXRadioButton"}, {ATSPI_ROLE_PASSWORD_TEXT, "AXSecureTextField"},
    {ATSPI_ROLE_LABEL, "AXStaticText"},         {ATSPI_ROLE_STATIC, "AXStaticText"},
    {ATSPI_ROLE_SLIDER, "AXSlider"},            {ATSPI_ROLE_SPIN_BUTTON, "AXIncrementor"},
    {ATSPI_ROLE_SCROLL_BAR, "AXScrollBar"},     {ATSPI_ROLE_PROGRESS_BAR, "AXProgressIndicator"},
    {ATSPI_ROLE_PAGE_TAB_LIST, "AXTabGroup"},   {ATSPI_ROLE_PAGE_TAB, "AXRadioButton"},
    {ATSPI_ROLE_TABLE, "AXTable"},              {ATSPI_ROLE_TREE_TABLE, "AXOutline"},
    {ATSPI_ROLE_TREE, "AXOutline"},             {ATSPI_ROLE_LIST, "AXList"},
    {ATSPI_ROLE_LIST_BOX, "AXList"},            {ATSPI_ROLE_IMAGE, "AXImage"},
    {ATSPI_ROLE_LINK, "AXLink"},                {ATSPI_ROLE_SCROLL_PANE, "AXScrollArea"},
    {ATSPI_ROLE_TOOL_BAR, "AXToolbar"},         {ATSPI_ROLE_SEPARATOR, "AXSplitter"},
    {ATSPI_ROLE_FILLER, "AXGroup"},             {ATSPI_ROLE_PANEL, "AXGroup"},
};

bool isMenuItemRole(AtspiRole role) {
    return role == ATSPI_ROLE_MENU || role == ATSPI_ROLE_MENU_ITEM || role == ATSPI_ROLE_CHECK_MENU_ITEM ||
           role == ATSPI_ROLE_RADIO_MENU_ITEM;
}

AtspiRole roleOfObject(AtspiAccessible* object) {
    GError* error = nullptr;
    const AtspiRole role = atspi_accessible_get_role(object, &error);
    return failed(error) ? ATSPI_ROLE_INVALID : role;
}

// The whole text of an object with the Text interface.
std::optional<std::string> textContents(AtspiAccessible* object) {
    AtspiText* text = atspi_accessible_get_text_iface(object);
    if (text == nullptr) return std::nullopt;
    GError* error = nullptr;
    char* contents = atspi_text_get_text(text, 0, -1, &error);
    g_object_unref(text);
    if (failed(error)) return std::nullopt;
    return takeText(contents);
}

// The whole text of a node, from its survey while that is current (`item`
// is then what it knows of the node).
std::optional<std::string> textOf(const Node& node, const Survey::Item* item) {
    if (item != nullptr) {
        if (const std::string* known = node.survey->text(node.object)) return *known;
    }
    return textContents(node.object);
}

std::string nameOf(AtspiAccessible* object, bool* ok = nullptr) {
    GError* error = nullptr;
    char* name = atspi_accessible_get_name(object, &error);
    const bool bad = failed(error);
    if (ok != nullptr) *ok = !bad;
    return takeText(name);
}

// The key binding of the element's first action ("" when it has none), read
// once per node. A surveyed element without the Action interface costs no
// round trip.
const std::string& keyBindingOf(Node& node, const Survey::Item* item) {
    if (node.keyBinding) return *node.keyBinding;
    if (item != nullptr) {
        if (const std::string* known = node.survey->keyBinding(node.object)) return node.keyBinding.emplace(*known);
    }
    std::string binding;
    AtspiAction* action = item != nullptr && !item->hasAction ? nullptr : atspi_accessible_get_action_iface(node.object);
    if (action != nullptr) {
        GError* error = nullptr;
        binding = takeText(atspi_action_get_key_binding(action, 0, &error));
        if (failed(error)) binding.clear();  // no action at all
        g_object_unref(action);
    }
    return node.keyBinding.emplace(std::move(binding));
}

// A menu item's key equivalent from its key binding, as (character,
// modifiers) with the modifier bits of a menu item's key equivalent: 1 shift,
// 2 option, 4 control, 8 no command. Control (and GTK's <Primary>) is the
// command key, since the library's command flag is sent as Control.
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

Value elementArray(LinuxPlatform& p, std::vector<AtspiAccessible*> objects) {
    std::vector<Element> out;
    out.reserve(objects.size());
    for (AtspiAccessible* object : objects) out.push_back(p.wrap(object));
    return out;
}

// The first match of `rule` in `collection` (one round trip), with a
// reference, or null.
AtspiAccessible* firstMatch(AtspiCollection* collection, AtspiMatchRule* rule) {
    GError* error = nullptr;
    GArray* matches = atspi_collection_get_matches(collection, rule, ATSPI_Collection_SORT_ORDER_CANONICAL, 1,
                                                   TRUE, &error);
    failed(error);
    AtspiAccessible* found = nullptr;
    if (matches != nullptr) {
        for (guint i = 0; i < matches->len; ++i) {
            AtspiAccessible* match = g_array_index(matches, AtspiAccessible*, i);
            if (found == nullptr && match != nullptr) {
                found = match;
            } else if (match != nullptr) {
                g_object_unref(match);
            }
        }
        g_array_free(matches, TRUE);
    }
    return found;
}

// The first descendant of `root` with `role` (through the Collection
// interface: one round trip), with a reference, or null.
AtspiAccessible* findByRole(AtspiAccessible* root, AtspiRole role) {
    AtspiCollection* collection = atspi_accessible_get_collection_iface(root);
    if (collection == nullptr) return nullptr;
    GArray* roles = g_array_new(FALSE, FALSE, sizeof(AtspiRole));
    g_array_append_val(roles, role);
    AtspiMatchRule* rule = atspi_match_rule_new(nullptr, ATSPI_Collection_MATCH_ALL, nullptr,
                                                ATSPI_Collection_MATCH_ALL, roles, ATSPI_Collection_MATCH_ANY,
                                                nullptr, ATSPI_Collection_MATCH_ALL, FALSE);
    AtspiAccessible* found = firstMatch(collection, rule);
    g_object_unref(rule);
    g_array_free(roles, TRUE);
    g_object_unref(collection);
    return found;
}

// The focused descendant of `root`, with a reference, or null.
AtspiAccessible* findFocused(AtspiAccessible* root) {
    AtspiCollection* collection = atspi_accessible_get_collection_iface(root);
    if (collection == nullptr) return nullptr;
    AtspiStateSet* states = atspi_state_set_new(nullptr);
    atspi_state_set_add(states, ATSPI_STATE_FOCUSED);
    atspi_state_set_add(states, ATSPI_STATE_SHOWING);  // closed menus keep a stale focus
    AtspiMatchRule* rule = atspi_match_rule_new(states, ATSPI_Collection_MATCH_ALL, nullptr,
                                                ATSPI_Collection_MATCH_ALL, nullptr, ATSPI_Collection_MATCH_ALL,
                                                nullptr, ATSPI_Collection_MATCH_ALL, FALSE);
    AtspiAccessible* found = firstMatch(collection, rule);
    g_object_unref(rule);
    g_object_unref(states);
    g_object_unref(collection);
    return found;
}

// The application's showing windows (popups included only when titled), each
// with a reference.
std::vector<AtspiAccessible*> windowsOf(AtspiAccessible* app) {
    std::vector<AtspiAccessible*> out;
    for (AtspiAccessible* child : childrenOf(app)) {
        if (child == nullptr) continue;
        const AtspiRole role = roleOfObject(child);
        const bool keep = isWindowRole(role) && hasState(child, ATSPI_STATE_SHOWING) &&
                          (role != ATSPI_ROLE_WINDOW || !nameOf(child).empty());
        if (keep) {
            out.push_back(child);
        } else {
            g_object_unref(child);
        }
    }
    return out;
}

// Among `app`'s `windows`, the focused one: the one in the active state, else
// the one whose title the window manager reports as active. Borrowed; null
// when there is none.
AtspiAccessible* focusedAmong(LinuxPlatform& p, AtspiAccessible* app, const std::vector<AtspiAccessible*>& windows) {
    AtspiAccessible* found = nullptr;
    for (AtspiAccessible* w : windows) {
        if (found == nullptr && hasState(w, ATSPI_STATE_ACTIVE)) found = w;
    }
    if (found == nullptr) {
        GError* error = nullptr;
        const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(app, &error));
        failed(error);
        if (p.x11().activeWindowPid() == pid) {
            const std::string title = p.x11().activeWindowTitle();
            for (AtspiAccessible* w : windows) {
                if (found == nullptr && nameOf(w) == title) found = w;
            }
        }
    }
    return found;
}

// The application's focused window, with a reference, or null.
AtspiAccessible* focusedWindowOf(LinuxPlatform& p, AtspiAccessible* app) {
    std::vector<AtspiAccessible*> windows = windowsOf(app);
    AtspiAccessible* found = focusedAmong(p, app, windows);
    for (AtspiAccessible* w : windows) {
        if (w != found) g_object_unref(w);
    }
    return found;
}

// The focused element of `app`'s focused window, with a reference, or null.
//
// GTK can lose track of its focus after a menu item is activated through
// accessibility: the menu's keyboard grab ends without a focus-in, so keys
// still reach the focus widget while nothing reports the focused state. When
// the application owns the active window and nothing in it is focused, the X
// input focus is moved away and back, which makes the toolkit notice its
// focus again, and the question is asked again for a short while.
AtspiAccessible* focusedElementOf(LinuxPlatform& p, AtspiAccessible* app) {
    AtspiAccessible* window = focusedWindowOf(p, app);
    if (window == nullptr) return nullptr;
    AtspiAccessible* focused = findFocused(window);
    if (focused == nullptr) {
        GError* error = nullptr;
        const auto pid = static_cast<std::int32_t>(atspi_accessible_get_process_id(app, &error));
        if (!failed(error) && p.x11().activeWindowPid() == pid && p.x11().refreshFocus()) {
            for (const double pause : {0.0, 0.005, 0.01, 0.02, 0.04, 0.08}) {
                p.x11().serve(pause);
                focused = findFocused(window);
                if (focused != nullptr) break;
            }
        }
    }
    g_object_unref(window);
    return focused;
}

AttributeRead ok(Value value) { return {kAXErrorSuccess, std::move(value)}; }
AttributeRead unsupported() { return {kAXErrorAttributeUnsupported, {}}; }

}  // namespace

// ---------------------------------------------------------------------------

Node::~Node() {
    if (object != nullptr) g_object_unref(object);
}

std::string takeText(char* text) {
    if (text == nullptr) return {};
    std::string out = text::decodeUtf8Lossy(text);
    g_free(text);
    return out;
}

bool hasState(AtspiAccessible* object, AtspiStateType state) {
    AtspiStateSet* set = atspi_accessible_get_state_set(object);
    if (set == nullptr) return false;
    const bool has = atspi_state_set_contains(set, state) != 0;
    g_object_unref(set);
    return has;
}

bool isWindowRole(AtspiRole role) {
    return role == ATSPI_ROLE_FRAME || role == ATSPI_ROLE_DIALOG || role == ATSPI_ROLE_FILE_CHOOSER ||
           role == ATSPI_ROLE_ALERT || role == ATSPI_ROLE_COLOR_CHOOSER || role == ATSPI_ROLE_WINDOW;
}

const char* busOf(AtspiAccessible* object) {
    const AtspiObject* o = ATSPI_OBJECT(object);
    return o->app != nullptr ? o->app->bus_name : nullptr;
}

std::vector<AtspiAccessible*> childrenOf(AtspiAccessible* object) {
    std::vector<AtspiAccessible*> out;
    GError* error = nullptr;
    const int count = atspi_accessible_get_child_count(object, &error);
    if (failed(error) || count <= 0) return out;
    out.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        AtspiAccessible* child = atspi_accessible_get_child_at_index(object, i, &error);
        if (failed(error)) child = nullptr;
        out.push_back(child);
    }
    return out;
}

// What a node's survey knows of it, however old: for the facts that do not
// change while an element lives (its role, whether a text is single-line).
const Survey::Item* lastKnown(const Node& node) {
    return node.survey ? node.survey->find(node.object) : nullptr;
}

AtspiRole roleOf(Node& node) {
    if (!node.role) {
        const Survey::Item* item = lastKnown(node);
        if (item != nullptr) {
            node.role = item->role;
        } else {
            node.role = node.object != nullptr ? roleOfObject(node.object) : ATSPI_ROLE_INVALID;
        }
    }
    return *node.role;
}

std::string axRole(Node& node) {
    if (node.kind == Node::Kind::closeButton) return "AXButton";
    if (node.kind == Node::Kind::application) return "AXApplication";
    const AtspiRole role = roleOf(node);
    const Survey::Item* item = lastKnown(node);
    if (role == ATSPI_ROLE_MENU) {
        // A menu directly in the menu bar is a menu bar item; a combo box's
        // list is a menu; a submenu is an item of its parent menu.
        AtspiRole parentRole = ATSPI_ROLE_INVALID;
        if (const Survey::Item* parent = item != nullptr ? node.survey->parent(*item) : nullptr) {
            parentRole = parent->role;
        } else if (AtspiAccessible* p = atspi_accessible_get_parent(node.object, nullptr)) {
            parentRole = roleOfObject(p);
            g_object_unref(p);
        }
        if (parentRole == ATSPI_ROLE_MENU_BAR) return "AXMenuBarItem";
        if (parentRole == ATSPI_ROLE_COMBO_BOX) return "AXMenu";
        return "AXMenuItem";
    }
    if (role == ATSPI_ROLE_COMBO_BOX) {
        // Editable combo boxes hold an entry.
        if (const auto entry = item != nullptr ? node.survey->hasDescendant(*item, ATSPI_ROLE_TEXT) : std::nullopt) {
            return *entry ? "AXComboBox" : "AXPopUpButton";
        }
        AtspiAccessible* entry = findByRole(node.object, ATSPI_ROLE_TEXT);
        if (entry == nullptr) return "AXPopUpButton";
        g_object_unref(entry);
        return "AXComboBox";
    }
    if (role == ATSPI_ROLE_TEXT || role == ATSPI_ROLE_ENTRY) {
        const bool singleLine = item != nullptr ? ((item->states >> ATSPI_STATE_SINGLE_LINE) & 1) != 0
                                                : hasState(node.object, ATSPI_STATE_SINGLE_LINE);
        return singleLine ? "AXTextField" : "AXTextArea";
    }
    for (const RoleName& r : kRoles) {
        if (r.role == role) return r.name;
    }
    return "AXUnknown";
}

AttributeRead LinuxPlatform::readAttribute(Node& node, std::string_view attribute) {
    if (node.kind == Node::Kind::application && node.object == nullptr) return {kAXErrorCannotComplete, {}};
    if (node.kind == Node::Kind::systemWide) {
        if (attribute != "AXFocusedUIElement") return unsupported();
        // The focused element of the frontmost application's focused window.
        const std::optional<std::int32_t> pid = x11().activeWindowPid();
        AtspiAccessible* app = pid ? findApplication(*pid) : nullptr;
        if (app == nullptr) return {kAXErrorNoValue, {}};
        AtspiAccessible* focused = focusedElementOf(*this, app);
        g_object_unref(app);
        if (focused == nullptr) return {kAXErrorNoValue, {}};
        return ok(wrap(focused));
    }
    if (node.kind == Node::Kind::closeButton) {
        if (attribute == "AXRole") return ok(std::string("AXButton"));
        if (attribute == "AXEnabled") return ok(true);
        return unsupported();
    }

    AtspiAccessible* object = node.object;
    const AtspiRole role = roleOf(node);
    if (role == ATSPI_ROLE_INVALID) return {kAXErrorInvalidUIElement, {}};
    // Names, descriptions and states come from the walk's survey while it is
    // current, otherwise from the application.
    const Survey::Item* item = surveyed(node);
    const auto has = [&](AtspiStateType state) {
        return item != nullptr ? ((item->states >> state) & 1) != 0 : hasState(object, state);
    };
    const auto name = [&](bool* good = nullptr) {
        if (item == nullptr) return nameOf(object, good);
        if (good != nullptr) *good = true;
        return item->name;
    };

    if (attribute == "AXRole") return ok(axRole(node));
    if (attribute == "AXTitle") {
        if (role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_STATIC || isTextRole(role)) return unsupported();
        bool good = false;
        std::string title = name(&good);
        if (!good) return {kAXErrorCannotComplete, {}};
        return ok(std::move(title));
    }
    if (attribute == "AXValue") {
        if (isToggleRole(role)) {
            if (has(ATSPI_STATE_INDETERMINATE)) return ok(std::int64_t{2});
            return ok(std::int64_t{has(ATSPI_STATE_CHECKED) ? 1 : 0});
        }
        if (isTextRole(role)) {
            auto text = textOf(node, item);
            if (!text) return {kAXErrorCannotComplete, {}};
            if (role == ATSPI_ROLE_PASSWORD_TEXT) {
                // A password is never read back, whatever the toolkit
                // exposes: one bullet per character shown.
                std::string bullets;
                for (std::size_t i = 0, n = text::graphemes(*text).size(); i < n; ++i) bullets += "\xE2\x80\xA2";
                return ok(std::move(bullets));
            }
            return ok(std::move(*text));
        }
        if (role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_STATIC) {
            std::string label = name();
            if (label.empty()) label = textOf(node, item).value_or("");
            return ok(std::move(label));
        }
        if (role == ATSPI_ROLE_COMBO_BOX) return ok(name());
        return unsupported();
    }
    if (attribute == "AXDescription") {
        std::string description;
        if (item != nullptr) {
            description = item->description;
        } else {
            GError* error = nullptr;
            description = takeText(atspi_accessible_get_description(object, &error));
            if (failed(error)) return {kAXErrorCannotComplete, {}};
        }
        if (description.empty()) return ok(std::monostate{});
        return ok(std::move(description));
    }
    if (attribute == "AXEnabled") return ok(has(ATSPI_STATE_SENSITIVE));
    if (attribute == "AXChildren") {
        if (role == ATSPI_ROLE_APPLICATION) return ok(elementArray(*this, windowsOf(object)));
        // A walk starts here: one bulk read serves it (and its children).
        const std::shared_ptr<const Survey> survey = surveyFor(node);
        const Survey::Item* known = surveyed(node);
        std::vector<Element> children;
        if (known != nullptr && known->childrenKnown) {
            children.reserve(known->children.size());
            for (AtspiAccessible* child : known->children) {
                g_object_ref(child);
                children.push_back(wrap(child, Node::Kind::accessible, survey));
            }
        } else {
            for (AtspiAccessible* child : childrenOf(object)) {
                children.push_back(wrap(child, Node::Kind::accessible, survey));
            }
        }
        return ok(std::move(children));
    }
    if (role == ATSPI_ROLE_APPLICATION) {
        if (attribute == "AXWindows") return ok(elementArray(*this, windowsOf(object)));
        if (attribute == "AXFocusedWindow") {
            AtspiAccessible* window = focusedWindowOf(*this, object);
            return window != nullptr ? ok(wrap(window)) : AttributeRead{kAXErrorNoValue, {}};
        }
        if (attribute == "AXMenuBar") {
            // The menu bar of the focused window, else of the first window with one.
            std::vector<AtspiAccessible*> windows = windowsOf(object);
            AtspiAccessible* focused = focusedAmong(*this, object, windows);
            std::stable_partition(windows.begin(), windows.end(), [&](AtspiAccessible* w) { return w == focused; });
            AtspiAccessible* bar = nullptr;
            for (AtspiAccessible* w : windows) {
                if (bar == nullptr) bar = findByRole(w, ATSPI_ROLE_MENU_BAR);
                g_object_unref(w);
            }
            return bar != nullptr ? ok(wrap(bar)) : AttributeRead{kAXErrorNoValue, {}};
        }
        if (attribute == "AXFocusedUIElement") {
            AtspiAccessible* focused = focusedElementOf(*this, object);
            return focused != nullptr ? ok(wrap(focused)) : AttributeRead{kAXErrorNoValue, {}};
        }
        return unsupported();
    }
    if (isMenuItemRole(role)) {
        if (attribute == "AXMenuItemMarkChar") {
            if (has(ATSPI_STATE_CHECKED)) return ok(std::string("\xE2\x9C\x93"));  // ✓
            return ok(std::monostate{});
        }
        if (attribute == "AXMenuItemCmdChar" || attribute == "AXMenuItemCmdModifiers") {
            if (role == ATSPI_ROLE_MENU) return ok(std::monostate{});
            auto key = keyEquivalent(keyBindingOf(node, item));
            if (!key) return ok(std::monostate{});
            if (attribute == "AXMenuItemCmdChar") return ok(std::move(key->first));
            return ok(key->second);
        }
    }
    if (attribute == "AXMenu" && role == ATSPI_ROLE_COMBO_BOX) {
        AtspiAccessible* menu = findByRole(object, ATSPI_ROLE_MENU);
        return menu != nullptr ? ok(wrap(menu)) : AttributeRead{kAXErrorNoValue, {}};
    }
    if (attribute == "AXCloseButton" && isWindowRole(role)) {
        g_object_ref(object);
        return ok(wrap(object, Node::Kind::closeButton));
    }
    return unsupported();
}

AttributeRead LinuxPlatform::copyAttributeValue(const Element& element, std::string_view attribute) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, {}};
    try {
        return readAttribute(*n, attribute);
    } catch (...) {
        return {kAXErrorFailure, {}};
    }
}

NamesRead LinuxPlatform::copyAttributeNames(const Element& element) {
    const auto locked = guard();
    Node* n = node(element);
    if (n == nullptr) return {kAXErrorIllegalArgument, std::nullopt};
    std::vector<std::string> names{"AXRole"};
    if (n->kind == Node::Kind::systemWide) return {kAXErrorSuccess, std::vector<std::string>{"AXFocusedUIElement"}};
    if (n->kind != Node::Kind::accessible) return {kAXErrorSuccess, names};
    const AtspiRole role = roleOf(*n);
    if (role == ATSPI_ROLE_INVALID) return {kAXErrorInvalidUIElement, std::nullopt};
    for (const char* name : {"AXTitle", "AXDescription", "AXEnabled", "AXChildren"}) names.emplace_back(name);
    if (isToggleRole(role) || isTextRole(role) || role == ATSPI_ROLE_LABEL || role == ATSPI_ROLE_COMBO_BOX)
        names.emplace_back("AXValue");
    if (role == ATSPI_ROLE_APPLICATION) {
        for (const char* name : {"AXWindows", "AXFocusedWindow", "AXMenuBar", "AXFocusedUIElement"})
            names.emplace_back(name);
    }
    if (isMenuItemRole(role)) {
        for (const char* name : {"AXMenuItemMarkChar", "AXMenuItemCmdChar", "AXMenuItemCmdModifiers"})
            names.emplace_back(name);
    }
    if (role == ATSPI_ROLE_COMBO_BOX) names.emplace_back("AXMenu");
    if (isWindowRole(role)) names.emplace_back("AXCloseButton");
    return {kAXErrorSuccess, std::move(names)};
}

}  // namespace zeblo::platform::linux_desktop

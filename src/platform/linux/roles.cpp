// The AT-SPI role of an element and the role name the library sees for it
// ("AXRole"): the one table from AT-SPI roles to role names, and the roles
// whose name depends on where the element stands or what it holds.
#include <string_view>

#include "platform/ax_names.h"
#include "platform/linux/accessible.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

struct RoleName {
    AtspiRole role;
    const char* name;
};

// Menus, menu items, lists, combo boxes, texts and entries are named in axRole: their name
// depends on their parent, their content or their state.
constexpr RoleName kRoles[] = {
    {ATSPI_ROLE_APPLICATION, ax::kApplicationRole},
    {ATSPI_ROLE_FRAME, ax::kWindowRole},
    {ATSPI_ROLE_DIALOG, ax::kWindowRole},
    {ATSPI_ROLE_FILE_CHOOSER, ax::kWindowRole},
    {ATSPI_ROLE_ALERT, ax::kWindowRole},
    {ATSPI_ROLE_COLOR_CHOOSER, ax::kWindowRole},
    {ATSPI_ROLE_WINDOW, ax::kWindowRole},
    {ATSPI_ROLE_MENU_BAR, ax::kMenuBarRole},
    {ATSPI_ROLE_POPUP_MENU, ax::kMenuRole},
    {ATSPI_ROLE_MENU_ITEM, ax::kMenuItemRole},
    {ATSPI_ROLE_CHECK_MENU_ITEM, ax::kMenuItemRole},
    {ATSPI_ROLE_RADIO_MENU_ITEM, ax::kMenuItemRole},
    {ATSPI_ROLE_TEAROFF_MENU_ITEM, ax::kMenuItemRole},
    {ATSPI_ROLE_PUSH_BUTTON, ax::kButtonRole},
    {ATSPI_ROLE_PUSH_BUTTON_MENU, ax::kButtonRole},
    {ATSPI_ROLE_CHECK_BOX, ax::kCheckBoxRole},
    {ATSPI_ROLE_TOGGLE_BUTTON, ax::kCheckBoxRole},
    {ATSPI_ROLE_RADIO_BUTTON, ax::kRadioButtonRole},
    {ATSPI_ROLE_PASSWORD_TEXT, ax::kSecureTextFieldRole},
    {ATSPI_ROLE_LABEL, ax::kStaticTextRole},
    {ATSPI_ROLE_STATIC, ax::kStaticTextRole},
    {ATSPI_ROLE_SLIDER, ax::kSliderRole},
    {ATSPI_ROLE_SPIN_BUTTON, ax::kTextFieldRole},
    {ATSPI_ROLE_SCROLL_BAR, ax::kScrollBarRole},
    {ATSPI_ROLE_PROGRESS_BAR, ax::kProgressIndicatorRole},
    {ATSPI_ROLE_PAGE_TAB_LIST, ax::kTabGroupRole},
    {ATSPI_ROLE_PAGE_TAB, ax::kRadioButtonRole},
    {ATSPI_ROLE_TABLE, ax::kTableRole},
    {ATSPI_ROLE_TREE_TABLE, ax::kOutlineRole},
    {ATSPI_ROLE_TREE, ax::kOutlineRole},
    {ATSPI_ROLE_LIST, ax::kListRole},
    {ATSPI_ROLE_LIST_BOX, ax::kListRole},
    {ATSPI_ROLE_IMAGE, ax::kImageRole},
    {ATSPI_ROLE_LINK, ax::kLinkRole},
    {ATSPI_ROLE_SCROLL_PANE, ax::kScrollAreaRole},
    {ATSPI_ROLE_TOOL_BAR, ax::kToolbarRole},
    {ATSPI_ROLE_SEPARATOR, ax::kSplitterRole},
    {ATSPI_ROLE_FILLER, ax::kGroupRole},
    {ATSPI_ROLE_PANEL, ax::kGroupRole},
    {ATSPI_ROLE_HEADING, ax::kHeadingRole},
    {ATSPI_ROLE_SECTION, ax::kGroupRole},
    {ATSPI_ROLE_BLOCK_QUOTE, ax::kGroupRole},
    {ATSPI_ROLE_LIST_ITEM, ax::kGroupRole},
    {ATSPI_ROLE_ARTICLE, ax::kGroupRole},
    {ATSPI_ROLE_CAPTION, ax::kGroupRole},
    {ATSPI_ROLE_DOCUMENT_WEB, ax::kWebAreaRole},
};

// The table's name for `role`, or null.
const char* tableName(AtspiRole role) {
    for (const RoleName& r : kRoles) {
        if (r.role == role) return r.name;
    }
    return nullptr;
}

// What a node's survey knows of it, however old: for the facts that do not
// change while an element lives (its role, whether a text is single-line).
const Survey::Item* lastKnown(const Node& node) { return node.survey ? node.survey->find(node.object.get()) : nullptr; }

// The role of `node`'s parent, from the survey (`item`) when it knows it.
AtspiRole parentRoleOf(const Node& node, const Survey::Item* item) {
    if (const Survey::Item* parent = item != nullptr ? node.survey->parent(*item) : nullptr) return parent->role;
    const AccessibleRef p = AccessibleRef::adopt(atspi_accessible_get_parent(node.object.get(), nullptr));
    return p ? roleOfObject(p.get()) : ATSPI_ROLE_INVALID;
}

}  // namespace

bool isWindowRole(AtspiRole role) {
    const char* name = tableName(role);
    return name != nullptr && std::string_view(name) == ax::kWindowRole;
}

AtspiRole roleOf(Node& node, bool* answered) {
    if (answered != nullptr) *answered = true;
    if (!node.role) {
        const Survey::Item* item = lastKnown(node);
        if (item != nullptr) {
            node.role = item->role;
        } else {
            const AtspiRole role = node.object ? roleOfObject(node.object.get(), answered) : ATSPI_ROLE_INVALID;
            if (answered != nullptr && !*answered) return role;  // asked again next time
            node.role = role;
        }
        // A check box drawn in a tree view (a checklist) is a table cell whose
        // first action is GTK's "toggle": it reads and acts as a check box. The
        // name is compared exactly: Qt gives every cell of its item views a
        // "Toggle" action, which selects the cell and leaves its check mark
        // alone. Cells with text are never toggles, so they cost no round trip.
        if (*node.role == ATSPI_ROLE_TABLE_CELL && (item == nullptr || (item->hasAction && !item->hasText)) &&
            firstActionOf(node.object.get()) == "toggle") {
            node.role = ATSPI_ROLE_CHECK_BOX;
        }
    }
    return *node.role;
}

std::string axRole(Node& node) {
    if (node.kind == Node::Kind::closeButton) return ax::kButtonRole;
    if (node.kind == Node::Kind::application) return ax::kApplicationRole;
    const AtspiRole role = roleOf(node);
    const Survey::Item* item = lastKnown(node);
    if (role == ATSPI_ROLE_MENU || role == ATSPI_ROLE_MENU_ITEM || role == ATSPI_ROLE_LIST) {
        // A menu or menu item directly in the menu bar is a menu bar item; a
        // combo box's menu (GTK) or list (Qt) is a menu; a submenu is an item
        // of its parent menu.
        const AtspiRole parentRole = parentRoleOf(node, item);
        if (parentRole == ATSPI_ROLE_MENU_BAR && role != ATSPI_ROLE_LIST) return ax::kMenuBarItemRole;
        if (parentRole == ATSPI_ROLE_COMBO_BOX && role != ATSPI_ROLE_MENU_ITEM) return ax::kMenuRole;
        if (role == ATSPI_ROLE_MENU) return ax::kMenuItemRole;
    }
    if (role == ATSPI_ROLE_COMBO_BOX) {
        // Editable combo boxes hold an entry.
        if (const auto entry = item != nullptr ? node.survey->hasDescendant(*item, ATSPI_ROLE_TEXT) : std::nullopt) {
            return *entry ? ax::kComboBoxRole : ax::kPopUpButtonRole;
        }
        return findByRole(node.object.get(), ATSPI_ROLE_TEXT) ? ax::kComboBoxRole : ax::kPopUpButtonRole;
    }
    if (role == ATSPI_ROLE_PARAGRAPH || role == ATSPI_ROLE_DOCUMENT_TEXT) {
        // The paragraphs of a document being edited (a word processor's)
        // are where typed text goes; a web page's are blocks of text.
        const std::uint64_t states = item != nullptr ? item->states : statesOf(node.object.get()).value_or(0);
        return ((states >> ATSPI_STATE_EDITABLE) & 1) != 0 ? ax::kTextAreaRole : ax::kGroupRole;
    }
    if (role == ATSPI_ROLE_TEXT || role == ATSPI_ROLE_ENTRY) {
        // GTK marks its entries single-line and its text views multi-line;
        // Qt marks only the multi-line ones.
        const std::uint64_t states = item != nullptr ? item->states : statesOf(node.object.get()).value_or(0);
        const bool multiLine =
            ((states >> ATSPI_STATE_MULTI_LINE) & 1) != 0 && ((states >> ATSPI_STATE_SINGLE_LINE) & 1) == 0;
        return multiLine ? ax::kTextAreaRole : ax::kTextFieldRole;
    }
    const char* name = tableName(role);
    return name != nullptr ? name : ax::kUnknownRole;
}

}  // namespace zeblo::platform::linux_desktop

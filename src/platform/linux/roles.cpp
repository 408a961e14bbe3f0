// The AT-SPI role of an element and the role name the library sees for it
// ("AXRole"): the one table from AT-SPI roles to role names, and the roles
// whose name depends on where the element stands or what it holds.
#include <string_view>

#include "platform/linux/accessible.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

struct RoleName {
    AtspiRole role;
    const char* name;
};

constexpr const char* kWindow = "AXWindow";

// Menus, menu items, lists, combo boxes, texts and entries are named in axRole: their name
// depends on their parent, their content or their state.
constexpr RoleName kRoles[] = {
    {ATSPI_ROLE_APPLICATION, "AXApplication"},
    {ATSPI_ROLE_FRAME, kWindow},
    {ATSPI_ROLE_DIALOG, kWindow},
    {ATSPI_ROLE_FILE_CHOOSER, kWindow},
    {ATSPI_ROLE_ALERT, kWindow},
    {ATSPI_ROLE_COLOR_CHOOSER, kWindow},
    {ATSPI_ROLE_WINDOW, kWindow},
    {ATSPI_ROLE_MENU_BAR, "AXMenuBar"},
    {ATSPI_ROLE_POPUP_MENU, "AXMenu"},
    {ATSPI_ROLE_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_CHECK_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_RADIO_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_TEAROFF_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_PUSH_BUTTON, "AXButton"},
    {ATSPI_ROLE_PUSH_BUTTON_MENU, "AXButton"},
    {ATSPI_ROLE_CHECK_BOX, "AXCheckBox"},
    {ATSPI_ROLE_TOGGLE_BUTTON, "AXCheckBox"},
    {ATSPI_ROLE_RADIO_BUTTON, "AXRadioButton"},
    {ATSPI_ROLE_PASSWORD_TEXT, "AXSecureTextField"},
    {ATSPI_ROLE_LABEL, "AXStaticText"},
    {ATSPI_ROLE_STATIC, "AXStaticText"},
    {ATSPI_ROLE_SLIDER, "AXSlider"},
    {ATSPI_ROLE_SPIN_BUTTON, "AXTextField"},
    {ATSPI_ROLE_SCROLL_BAR, "AXScrollBar"},
    {ATSPI_ROLE_PROGRESS_BAR, "AXProgressIndicator"},
    {ATSPI_ROLE_PAGE_TAB_LIST, "AXTabGroup"},
    {ATSPI_ROLE_PAGE_TAB, "AXRadioButton"},
    {ATSPI_ROLE_TABLE, "AXTable"},
    {ATSPI_ROLE_TREE_TABLE, "AXOutline"},
    {ATSPI_ROLE_TREE, "AXOutline"},
    {ATSPI_ROLE_LIST, "AXList"},
    {ATSPI_ROLE_LIST_BOX, "AXList"},
    {ATSPI_ROLE_IMAGE, "AXImage"},
    {ATSPI_ROLE_LINK, "AXLink"},
    {ATSPI_ROLE_SCROLL_PANE, "AXScrollArea"},
    {ATSPI_ROLE_TOOL_BAR, "AXToolbar"},
    {ATSPI_ROLE_SEPARATOR, "AXSplitter"},
    {ATSPI_ROLE_FILLER, "AXGroup"},
    {ATSPI_ROLE_PANEL, "AXGroup"},
    {ATSPI_ROLE_HEADING, "AXHeading"},
    {ATSPI_ROLE_SECTION, "AXGroup"},
    {ATSPI_ROLE_BLOCK_QUOTE, "AXGroup"},
    {ATSPI_ROLE_LIST_ITEM, "AXGroup"},
    {ATSPI_ROLE_ARTICLE, "AXGroup"},
    {ATSPI_ROLE_CAPTION, "AXGroup"},
    {ATSPI_ROLE_DOCUMENT_WEB, "AXWebArea"},
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
    return name != nullptr && std::string_view(name) == kWindow;
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
    if (node.kind == Node::Kind::closeButton) return "AXButton";
    if (node.kind == Node::Kind::application) return "AXApplication";
    const AtspiRole role = roleOf(node);
    const Survey::Item* item = lastKnown(node);
    if (role == ATSPI_ROLE_MENU || role == ATSPI_ROLE_MENU_ITEM || role == ATSPI_ROLE_LIST) {
        // A menu or menu item directly in the menu bar is a menu bar item; a
        // combo box's menu (GTK) or list (Qt) is a menu; a submenu is an item
        // of its parent menu.
        const AtspiRole parentRole = parentRoleOf(node, item);
        if (parentRole == ATSPI_ROLE_MENU_BAR && role != ATSPI_ROLE_LIST) return "AXMenuBarItem";
        if (parentRole == ATSPI_ROLE_COMBO_BOX && role != ATSPI_ROLE_MENU_ITEM) return "AXMenu";
        if (role == ATSPI_ROLE_MENU) return "AXMenuItem";
    }
    if (role == ATSPI_ROLE_COMBO_BOX) {
        // Editable combo boxes hold an entry.
        if (const auto entry = item != nullptr ? node.survey->hasDescendant(*item, ATSPI_ROLE_TEXT) : std::nullopt) {
            return *entry ? "AXComboBox" : "AXPopUpButton";
        }
        return findByRole(node.object.get(), ATSPI_ROLE_TEXT) ? "AXComboBox" : "AXPopUpButton";
    }
    if (role == ATSPI_ROLE_PARAGRAPH || role == ATSPI_ROLE_DOCUMENT_TEXT) {
        // The paragraphs of a document being edited (a word processor's)
        // are where typed text goes; a web page's are blocks of text.
        const std::uint64_t states = item != nullptr ? item->states : statesOf(node.object.get()).value_or(0);
        return ((states >> ATSPI_STATE_EDITABLE) & 1) != 0 ? "AXTextArea" : "AXGroup";
    }
    if (role == ATSPI_ROLE_TEXT || role == ATSPI_ROLE_ENTRY) {
        // GTK marks its entries single-line and its text views multi-line;
        // Qt marks only the multi-line ones.
        const std::uint64_t states = item != nullptr ? item->states : statesOf(node.object.get()).value_or(0);
        const bool multiLine =
            ((states >> ATSPI_STATE_MULTI_LINE) & 1) != 0 && ((states >> ATSPI_STATE_SINGLE_LINE) & 1) == 0;
        return multiLine ? "AXTextArea" : "AXTextField";
    }
    const char* name = tableName(role);
    return name != nullptr ? name : "AXUnknown";
}

}  // namespace zeblo::platform::linux_desktop

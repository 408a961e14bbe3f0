// The accessibility vocabulary: the names of the attributes, roles and
// actions that the operations read, compare and perform, spelt as the macOS
// accessibility API spells them. Every backend answers to these names (the
// Linux one maps AT-SPI2's roles, states and interfaces onto them, the
// simulated desktop keeps them as its desktop file gives them), and code
// names them only through these constants, so that a misspelt name fails to
// compile instead of reading as an attribute the element does not have.
#pragma once

namespace zeblo::ax {

// --- Attributes ---------------------------------------------------------------
// Of every element.
inline constexpr char kRoleAttribute[] = "AXRole";
inline constexpr char kTitleAttribute[] = "AXTitle";
inline constexpr char kDescriptionAttribute[] = "AXDescription";
inline constexpr char kValueAttribute[] = "AXValue";
inline constexpr char kEnabledAttribute[] = "AXEnabled";
inline constexpr char kChildrenAttribute[] = "AXChildren";
// Of an application.
inline constexpr char kWindowsAttribute[] = "AXWindows";
inline constexpr char kFocusedWindowAttribute[] = "AXFocusedWindow";
inline constexpr char kMenuBarAttribute[] = "AXMenuBar";
inline constexpr char kFrontmostAttribute[] = "AXFrontmost";
// Chromium and Electron applications fill in their tree when this is set.
inline constexpr char kManualAccessibilityAttribute[] = "AXManualAccessibility";
// Of an application and of the system-wide element.
inline constexpr char kFocusedUIElementAttribute[] = "AXFocusedUIElement";
inline constexpr char kFocusedApplicationAttribute[] = "AXFocusedApplication";
// Of a window.
inline constexpr char kCloseButtonAttribute[] = "AXCloseButton";
// Of a popup button or combo box: its menu.
inline constexpr char kMenuAttribute[] = "AXMenu";
// Of a menu item: its check mark, its key equivalent and that key's modifiers.
inline constexpr char kMenuItemMarkCharAttribute[] = "AXMenuItemMarkChar";
inline constexpr char kMenuItemCmdCharAttribute[] = "AXMenuItemCmdChar";
inline constexpr char kMenuItemCmdModifiersAttribute[] = "AXMenuItemCmdModifiers";

// Of an element that can have them: focus, selection, expansion, where it
// lies on the screen, and a text field's placeholder.
inline constexpr char kFocusedAttribute[] = "AXFocused";
inline constexpr char kSelectedAttribute[] = "AXSelected";
inline constexpr char kExpandedAttribute[] = "AXExpanded";
inline constexpr char kFrameAttribute[] = "AXFrame";
inline constexpr char kPlaceholderValueAttribute[] = "AXPlaceholderValue";
// The library's own attributes, which the backends give for the element
// interface: an element's accessible name as the toolkit gives it, every
// child with the hidden ones, whether the element is seen, and an
// application's pop-up menus in windows of their own.
inline constexpr char kNameAttribute[] = "ZBName";
inline constexpr char kAllChildrenAttribute[] = "ZBAllChildren";
inline constexpr char kVisibleAttribute[] = "ZBVisible";
inline constexpr char kMenusAttribute[] = "ZBMenus";

// --- Roles --------------------------------------------------------------------
inline constexpr char kApplicationRole[] = "AXApplication";
inline constexpr char kWindowRole[] = "AXWindow";
inline constexpr char kMenuBarRole[] = "AXMenuBar";
inline constexpr char kMenuBarItemRole[] = "AXMenuBarItem";
inline constexpr char kMenuRole[] = "AXMenu";
inline constexpr char kMenuItemRole[] = "AXMenuItem";
inline constexpr char kButtonRole[] = "AXButton";
inline constexpr char kCheckBoxRole[] = "AXCheckBox";
inline constexpr char kRadioButtonRole[] = "AXRadioButton";
inline constexpr char kPopUpButtonRole[] = "AXPopUpButton";
inline constexpr char kComboBoxRole[] = "AXComboBox";
inline constexpr char kTextFieldRole[] = "AXTextField";
inline constexpr char kSecureTextFieldRole[] = "AXSecureTextField";
inline constexpr char kSearchFieldRole[] = "AXSearchField";
inline constexpr char kTextAreaRole[] = "AXTextArea";
inline constexpr char kStaticTextRole[] = "AXStaticText";
inline constexpr char kHeadingRole[] = "AXHeading";
inline constexpr char kLinkRole[] = "AXLink";
inline constexpr char kImageRole[] = "AXImage";
inline constexpr char kGroupRole[] = "AXGroup";
inline constexpr char kListRole[] = "AXList";
inline constexpr char kOutlineRole[] = "AXOutline";
inline constexpr char kTableRole[] = "AXTable";
inline constexpr char kTabGroupRole[] = "AXTabGroup";
inline constexpr char kToolbarRole[] = "AXToolbar";
inline constexpr char kScrollAreaRole[] = "AXScrollArea";
inline constexpr char kScrollBarRole[] = "AXScrollBar";
inline constexpr char kSliderRole[] = "AXSlider";
inline constexpr char kSplitterRole[] = "AXSplitter";
inline constexpr char kProgressIndicatorRole[] = "AXProgressIndicator";
inline constexpr char kWebAreaRole[] = "AXWebArea";
inline constexpr char kIncrementorRole[] = "AXIncrementor";
inline constexpr char kSwitchRole[] = "AXSwitch";
inline constexpr char kToggleRole[] = "AXToggle";
inline constexpr char kMenuButtonRole[] = "AXMenuButton";
// Roles that only arrange others.
inline constexpr char kSplitGroupRole[] = "AXSplitGroup";
inline constexpr char kLayoutAreaRole[] = "AXLayoutArea";
inline constexpr char kLayoutItemRole[] = "AXLayoutItem";
inline constexpr char kFillerRole[] = "AXFiller";
inline constexpr char kPanelRole[] = "AXPanel";
inline constexpr char kMatteRole[] = "AXMatte";
inline constexpr char kGrowAreaRole[] = "AXGrowArea";
inline constexpr char kRulerRole[] = "AXRuler";
inline constexpr char kUnknownRole[] = "AXUnknown";

// --- Actions ------------------------------------------------------------------
inline constexpr char kPressAction[] = "AXPress";
inline constexpr char kPickAction[] = "AXPick";
inline constexpr char kShowMenuAction[] = "AXShowMenu";
inline constexpr char kIncrementAction[] = "AXIncrement";
inline constexpr char kDecrementAction[] = "AXDecrement";
inline constexpr char kScrollToVisibleAction[] = "AXScrollToVisible";
inline constexpr char kConfirmAction[] = "AXConfirm";
inline constexpr char kCancelAction[] = "AXCancel";
inline constexpr char kRaiseAction[] = "AXRaise";

}  // namespace zeblo::ax

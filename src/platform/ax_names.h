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
inline constexpr char kUnknownRole[] = "AXUnknown";

// --- Actions ------------------------------------------------------------------
inline constexpr char kPressAction[] = "AXPress";
inline constexpr char kPickAction[] = "AXPick";

}  // namespace zeblo::ax

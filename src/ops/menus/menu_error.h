// The errors of the menus area. Like the other typed errors they carry no
// texts of their own: their description is the generic one naming the type
// and the case number. The payloads serve diagnostics only.
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

// The cases in declaration order: a case's number is part of the descriptions
// the host sees.
inline constexpr ErrorCase kMenuErrorCases[] = {
    {"appNotFound", "application not found"},
    {"menuItemNotFound", "menu item not found"},
    {"noFrontmostApp", "no frontmost application"},
    {"menuBarNotFound", "menu bar not found"},
    {"emptyMenuPath", "empty menu path"},
    {"menuClickFailed", "the item refused to be chosen"},
};
inline constexpr ErrorKind kMenuError{"MenuError", kMenuErrorCases};

class MenuError : public TypedError {
public:
    static MenuError appNotFound(std::string name) { return {Case::appNotFound, std::move(name)}; }
    static MenuError menuItemNotFound(std::string title) { return {Case::menuItemNotFound, std::move(title)}; }
    static MenuError noFrontmostApp() { return MenuError(Case::noFrontmostApp); }
    static MenuError menuBarNotFound() { return MenuError(Case::menuBarNotFound); }
    static MenuError emptyMenuPath() { return MenuError(Case::emptyMenuPath); }
    static MenuError menuClickFailed() { return MenuError(Case::menuClickFailed); }

    // The name asked for (appNotFound) or the title not found (menuItemNotFound).
    using TypedError::payload;

private:
    enum class Case { appNotFound, menuItemNotFound, noFrontmostApp, menuBarNotFound, emptyMenuPath, menuClickFailed };
    explicit MenuError(Case c) : TypedError(kMenuError, static_cast<int>(c)) {}
    MenuError(Case c, std::string payload) : TypedError(kMenuError, static_cast<int>(c), std::move(payload)) {}
};

}  // namespace zeblo

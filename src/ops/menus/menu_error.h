// The errors of the menus area. Like the other typed errors they carry no
// texts of their own: their description is the generic one naming the type
// and the case number. The payloads serve diagnostics only.
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

class MenuError : public TypedError {
public:
    // The case numbers are part of the descriptions the host sees.
    enum class Case {
        appNotFound = 0,
        menuItemNotFound = 1,
        noFrontmostApp = 2,
        menuBarNotFound = 3,
        emptyMenuPath = 4,
        menuClickFailed = 5,
    };

    static MenuError appNotFound(std::string name) {
        return MenuError(Case::appNotFound, "appNotFound", std::move(name));
    }
    static MenuError menuItemNotFound(std::string title) {
        return MenuError(Case::menuItemNotFound, "menuItemNotFound", std::move(title));
    }
    static MenuError noFrontmostApp() { return MenuError(Case::noFrontmostApp, "noFrontmostApp"); }
    static MenuError menuBarNotFound() { return MenuError(Case::menuBarNotFound, "menuBarNotFound"); }
    static MenuError emptyMenuPath() { return MenuError(Case::emptyMenuPath, "emptyMenuPath"); }
    static MenuError menuClickFailed() { return MenuError(Case::menuClickFailed, "menuClickFailed"); }

    Case kind() const noexcept { return case_; }
    // The name asked for (appNotFound) or the title not found (menuItemNotFound).
    using TypedError::payload;

private:
    MenuError(Case c, const char* caseName) : TypedError("MenuError", static_cast<int>(c), caseName), case_(c) {}
    MenuError(Case c, const char* caseName, std::string payload)
        : TypedError("MenuError", static_cast<int>(c), caseName, std::move(payload)), case_(c) {}
    Case case_;
};

}  // namespace zeblo

// The errors of the menus area. Like the other typed errors they carry no
// texts of their own: their description is the generic one naming the type
// and the case number. The payloads serve diagnostics only.
#pragma once

#include <string>

#include "boundary/error.h"

namespace zeblo {

class MenuError : public Error {
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

    static MenuError appNotFound(std::string name) { return MenuError(Case::appNotFound, std::move(name)); }
    static MenuError menuItemNotFound(std::string title) {
        return MenuError(Case::menuItemNotFound, std::move(title));
    }
    static MenuError noFrontmostApp() { return MenuError(Case::noFrontmostApp); }
    static MenuError menuBarNotFound() { return MenuError(Case::menuBarNotFound); }
    static MenuError emptyMenuPath() { return MenuError(Case::emptyMenuPath); }
    static MenuError menuClickFailed() { return MenuError(Case::menuClickFailed); }

    Case kind() const noexcept { return case_; }
    // The name asked for (appNotFound) or the title not found (menuItemNotFound).
    const std::string& payload() const noexcept { return payload_; }

    std::string description() const override;
    std::string debugText() const override;

private:
    explicit MenuError(Case c, std::string payload = {}) : case_(c), payload_(std::move(payload)) {}
    Case case_;
    std::string payload_;
};

}  // namespace zeblo

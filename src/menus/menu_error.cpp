#include "menus/menu_error.h"

namespace zeblo {

std::string MenuError::description() const {
    return genericDescription("MenuError", static_cast<int>(case_));
}

std::string MenuError::debugText() const {
    switch (case_) {
        case Case::appNotFound: return caseWithPayload("appNotFound", payload_);
        case Case::menuItemNotFound: return caseWithPayload("menuItemNotFound", payload_);
        case Case::noFrontmostApp: return "noFrontmostApp";
        case Case::menuBarNotFound: return "menuBarNotFound";
        case Case::emptyMenuPath: return "emptyMenuPath";
        case Case::menuClickFailed: return "menuClickFailed";
    }
    return "unknown";
}

}  // namespace zeblo

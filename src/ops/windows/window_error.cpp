#include "ops/windows/window_error.h"

namespace zeblo {

std::string WindowError::description() const {
    switch (case_) {
        case Case::appNotFound: return "Application '" + name_ + "' not found. Check if the app is running.";
        case Case::windowNotFound:
            return "Window '" + name_ + "' not found. Check if the window exists and is visible.";
        case Case::buttonNotFound: return "Button '" + name_ + "' not found in window";
        case Case::checkboxNotFound: return "Checkbox '" + name_ + "' not found in window";
        case Case::noFrontmostApp: return "No frontmost application";
        case Case::clickFailed: return "Failed to perform click action";
        case Case::closeFailed: return "Failed to close window";
        case Case::timeout: return "Operation timed out";
    }
    return "Unknown window error";
}

std::string WindowError::shortText() const {
    switch (case_) {
        case Case::appNotFound: return "Application '" + name_ + "' not found";
        case Case::windowNotFound: return "Window '" + name_ + "' not found";
        case Case::buttonNotFound: return "Button '" + name_ + "' not found";
        case Case::checkboxNotFound: return "Checkbox '" + name_ + "' not found";
        case Case::noFrontmostApp: return "No frontmost application";
        case Case::clickFailed: return "Click action failed";
        case Case::closeFailed: return "Close action failed";
        case Case::timeout: return "Operation timed out";
    }
    return "Unknown window error";
}

std::string WindowError::debugText() const {
    switch (case_) {
        case Case::appNotFound: return caseWithPayload("appNotFound", name_);
        case Case::windowNotFound: return caseWithPayload("windowNotFound", name_);
        case Case::buttonNotFound: return caseWithPayload("buttonNotFound", name_);
        case Case::checkboxNotFound: return caseWithPayload("checkboxNotFound", name_);
        case Case::noFrontmostApp: return "noFrontmostApp";
        case Case::clickFailed: return "clickFailed";
        case Case::closeFailed: return "closeFailed";
        case Case::timeout: return "timeout";
    }
    return "unknown";
}

}  // namespace zeblo

#include "apps/app_error.h"

namespace zeblo {

std::string AppError::description() const {
    return genericDescription("AppError", static_cast<int>(case_));
}

std::string AppError::debugText() const {
    switch (case_) {
        case Case::appNotFound: return caseWithPayload("appNotFound", name_);
        case Case::noFrontmostApp: return "noFrontmostApp";
        case Case::activationFailed: return "activationFailed";
        case Case::launchFailed: return "launchFailed";
    }
    return "unknown";
}

}  // namespace zeblo

#include "keyboard/keystroke_error.h"

namespace zeblo {

std::string KeystrokeError::description() const {
    return genericDescription("KeystrokeError", static_cast<int>(case_));
}

std::string KeystrokeError::debugText() const {
    switch (case_) {
        case Case::appNotFound: return caseWithPayload("appNotFound", name_);
        case Case::noFrontmostApp: return "noFrontmostApp";
        case Case::invalidModifiers: return "invalidModifiers";
    }
    return "unknown";
}

MessageError keystrokeFailure(std::string message, std::int64_t code) {
    return MessageError(kKeystrokeDomain, code, std::move(message));
}

}  // namespace zeblo

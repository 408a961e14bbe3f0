#include "ops/keyboard/keystroke_error.h"

namespace zeblo {

MessageError keystrokeFailure(std::string message, std::int64_t code) {
    return MessageError(kKeystrokeDomain, code, std::move(message));
}

}  // namespace zeblo

#include "platform/reply_limit.h"

#include <cerrno>
#include <cstdlib>

namespace zeblo::platform {

int parseReplyLimit(const char* text) {
    if (text == nullptr || *text < '0' || *text > '9') return kDefaultReplyLimitMs;
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (errno != 0 || *end != '\0' || value < kMinReplyLimitMs || value > kMaxReplyLimitMs) {
        return kDefaultReplyLimitMs;
    }
    return static_cast<int>(value);
}

int replyLimitMs() {
    static const int limit = parseReplyLimit(std::getenv("ZEBLO_REPLY_TIMEOUT_MS"));
    return limit;
}

}  // namespace zeblo::platform

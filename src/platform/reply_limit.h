// How long one call into another application may wait for its answer.
#pragma once

namespace zeblo::platform {

// The reply limit in milliseconds: the whole number in the environment
// variable ZEBLO_REPLY_TIMEOUT_MS when it lies in [kMinReplyLimitMs,
// kMaxReplyLimitMs], kDefaultReplyLimitMs otherwise. The variable is read once,
// at the first call that needs it; the value holds for the process's life.
inline constexpr int kDefaultReplyLimitMs = 1000;
inline constexpr int kMinReplyLimitMs = 10;
inline constexpr int kMaxReplyLimitMs = 60000;
int replyLimitMs();

// The limit that `text` asks for, or kDefaultReplyLimitMs when it is null,
// not a whole number or out of range.
int parseReplyLimit(const char* text);

}  // namespace zeblo::platform

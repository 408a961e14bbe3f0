// The reply limit read from ZEBLO_REPLY_TIMEOUT_MS: whole milliseconds from
// 10 to 60000, anything else the default.
#include <gtest/gtest.h>

#include "platform/reply_limit.h"

namespace zeblo::platform {
namespace {

TEST(ReplyLimit, WholeMillisecondsWithinTheLimitsElseTheDefault) {
    EXPECT_EQ(parseReplyLimit("10"), 10);
    EXPECT_EQ(parseReplyLimit("250"), 250);
    EXPECT_EQ(parseReplyLimit("60000"), 60000);
    for (const char* bad : {static_cast<const char*>(nullptr), "", "9", "60001", "-20", "+20", " 20", "20ms",
                            "2.5", "99999999999999999999999"}) {
        EXPECT_EQ(parseReplyLimit(bad), kDefaultReplyLimitMs) << (bad != nullptr ? bad : "null");
    }
}

}  // namespace
}  // namespace zeblo::platform

// A Wayland compositor that offers no way to send keys (weston): every
// keyboard call fails, each after one line that says why.
#include <cstdlib>
#include <string_view>

#include "e2e_support.h"
#include "platform/platform.h"

namespace {

using namespace e2e;

TEST(WaylandSession, KeyboardCallsFailWithTheReasonWhereTheCompositorHasNoWay) {
    const char* compositor = std::getenv("ZEBLO_WAYLAND_COMPOSITOR");
    if (compositor == nullptr || std::string_view(compositor) != "weston") GTEST_SKIP() << "not weston";
    const uint16_t a = 0;
    const auto failsWithReason = [](auto call) {
        const zeblo::platform::LogCapture capture;
        const bool result = call();
        int reasons = 0;
        for (const std::string& line : capture.lines()) {
            if (line.find("no way to send keys in this Wayland session: ") != std::string::npos) ++reasons;
        }
        return !result && reasons == 1;
    };
    EXPECT_TRUE(failsWithReason([] { return zeblo_type_text("abc", false); }));
    EXPECT_TRUE(failsWithReason([&] { return zeblo_send_global_keystroke(&a, 1, 0); }));
    EXPECT_TRUE(failsWithReason([] { return zeblo_paste_text("text"); }));
}

}  // namespace

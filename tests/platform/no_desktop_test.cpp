// With no desktop to reach, every call that acts fails and says why: nothing
// is typed, pasted or launched while the call answers true.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "platform/default/no_desktop.h"
#include "zeblo/zeblo.h"

namespace zeblo::platform {
namespace {

class NoDesktopTest : public ::testing::Test {
protected:
    void SetUp() override { install(std::make_shared<NoDesktop>("neither DISPLAY nor WAYLAND_DISPLAY is set")); }
    void TearDown() override { install(nullptr); }
};

std::string take(const char* text) {
    std::string out = text != nullptr ? text : "";
    zeblo_free_string(text);
    return out;
}

TEST_F(NoDesktopTest, ActingFailsWithTheReasonReadingFindsNothing) {
    const std::string reason = "No desktop can be reached (neither DISPLAY nor WAYLAND_DISPLAY is set): ";
    struct Case {
        bool (*call)();
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {[] { return zeblo_type_text("abc", false); },
         {reason + "no key can be sent", "zeblo_type_text error: Failed to create event source"}},
        {[] { return zeblo_paste_text("abc"); },
         {reason + "no key can be sent", "zeblo_paste_text error: Failed to create event source"}},
        {[] {
             static const std::uint16_t v = 9;
             return zeblo_send_global_keystroke(&v, 1, 0x100000);
         },
         {reason + "no key can be sent", "zeblo_send_global_keystroke error: Failed to create event source"}},
        {[] { return zeblo_launch_app("Editor"); },
         {reason + "'Editor' is not launched",
          "zeblo_launch_app error: The operation couldn\u2019t be completed. (ZEBLOui.AppError error 3.)"}},
    };
    for (const Case& c : cases) {
        LogCapture capture;
        EXPECT_FALSE(c.call());
        EXPECT_EQ(capture.lines(), c.lines);
    }
    EXPECT_FALSE(zeblo_is_in_text_field());
    EXPECT_EQ(take(zeblo_get_running_apps()), "[]");
    EXPECT_EQ(take(zeblo_get_frontmost_info()), "{\"error\": \"The operation couldn\u2019t be completed. (ZEBLOui.AppError error 1.)\"}");
}

TEST_F(NoDesktopTest, WaitsTakeTheirTime) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(zeblo_wait_for_window("Editor", nullptr, 0, 120));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

}  // namespace
}  // namespace zeblo::platform

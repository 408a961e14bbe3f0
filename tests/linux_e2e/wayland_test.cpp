// Wayland sessions: a compositor that offers no way to send keys (weston),
// where every keyboard call fails, each after one line that says why; and
// keys through the desktop portal once the user has allowed them.
#include <X11/keysym.h>

#include <cstdlib>
#include <string_view>

#include "e2e_support.h"
#include "platform/linux/wayland_session.h"
#include "platform/platform.h"

namespace {

using namespace e2e;
using zeblo::platform::linux_desktop::KeySym;

bool under(std::string_view wanted) {
    const char* compositor = std::getenv("ZEBLO_WAYLAND_COMPOSITOR");
    return compositor != nullptr && wanted == compositor;
}

TEST(WaylandSession, KeyboardCallsFailWithTheReasonWhereTheCompositorHasNoWay) {
    if (!under("weston")) GTEST_SKIP() << "not weston";
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

// The portal asks the user at the first keyboard need and sends keys once
// the user has allowed them in its dialog (GNOME's portal, under mutter,
// allowed here through the dialog's accessibility). The session's keys go
// to the test application's focused field.
TEST(WaylandSession, ThePortalSendsKeysOnceTheUserAllowsThem) {
    if (!under("mutter")) GTEST_SKIP() << "GNOME's portal needs mutter";
    constexpr const char* kApp = "zeblo-testapp";
    constexpr const char* kWindow = "Zeblo Test";
    if (!isRunning(kApp)) {
        ASSERT_TRUE(zeblo_launch_app(ZEBLO_TESTAPP_PATH));
    }
    ASSERT_TRUE(zeblo_wait_for_window(kApp, kWindow, 0, 20000));
    std::unique_ptr<zeblo::platform::linux_desktop::WaylandSession> session =
        zeblo::platform::linux_desktop::WaylandSession::open(true);
    ASSERT_TRUE(session);
    EXPECT_NE(session->keysMissing().find("asks the user to allow"), std::string::npos);
    const char* portal = "xdg-desktop-portal-gnome";
    ASSERT_TRUE(eventually([&] { return zeblo_click_checkbox(portal, "Remote desktop", "Allow remote interaction"); }));
    ASSERT_TRUE(eventually([&] { return zeblo_click_button(portal, "Remote desktop", "Share"); }));
    ASSERT_TRUE(eventually([&] { return session->keysMissing().empty(); }));

    ASSERT_TRUE(zeblo_focus_app(kApp, kWindow, true, false, 5000));
    ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    ASSERT_TRUE(zeblo_paste_into_focused_field("", false));
    const std::pair<std::uint16_t, KeySym> keys[] = {{31, XK_o}, {40, XK_k}};  // the library's codes of O and K
    for (const auto& [code, sym] : keys) {
        ASSERT_TRUE(session->press(code, {sym, sym - 0x20, 0}));
        session->release(code);
    }
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] ok\n"); })) << windowText(kApp, kWindow);
}

}  // namespace

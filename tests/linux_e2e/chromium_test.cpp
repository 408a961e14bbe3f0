// End-to-end test against Chromium showing a local page: the library must
// switch accessibility on and ask for the page's content by itself.
#include "e2e_support.h"

namespace {

using namespace e2e;

constexpr const char* kApp = "Chromium";
constexpr const char* kWindow = "Zeblo Web Test - Chromium";

class Chromium : public DesktopTest {};

TEST_F(Chromium, APageIsReadPressedAndTypedInto) {
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    if (std::system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "no chromium";
    ASSERT_TRUE(zeblo_launch_app(ZEBLO_CHROMIUM_PAGE));
    ASSERT_TRUE(zeblo_wait_for_window(kApp, kWindow, 0, 30000)) << "Chromium did not show the page";
    ASSERT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "Not pressed"); }));

    // A paragraph's text comes once, though Chromium gives it twice.
    const std::string text = windowText(kApp, kWindow);
    EXPECT_EQ(text.find("A paragraph of text."), text.rfind("A paragraph of text.")) << text;

    EXPECT_TRUE(zeblo_click_button(kApp, kWindow, "Press me"));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXStaticText] Pressed"); }));
    EXPECT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Remember me"));
    EXPECT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Remember me", 0));

    // The input follows the check box in the tab order and takes typed text.
    ASSERT_TRUE(zeblo_focus_app(kApp, kWindow, true, false, 5000));
    // Each Tab is given time to move the focus, so that none goes past the input.
    for (int tabs = 0; tabs < 4 && !eventually(zeblo_is_in_text_field, 1.0); ++tabs) {
        ASSERT_TRUE(zeblo_send_keystroke(kApp, "\t", 0));
    }
    ASSERT_TRUE(zeblo_is_in_text_field());
    zeblo_type_text("Hello web", false);
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "Hello web"); }));

    // Closing the tab closes the window.
    EXPECT_TRUE(zeblo_send_keystroke(kApp, "w", 2));
    EXPECT_TRUE(zeblo_wait_for_window(kApp, kWindow, 1, 10000));
}

}  // namespace

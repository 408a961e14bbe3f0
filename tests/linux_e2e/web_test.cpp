// End-to-end tests against web browsers showing a local page (Chromium and
// Firefox ESR): the library must switch accessibility on and ask for the
// page's content by itself, read text where each browser keeps it, and act
// only on what the page shows.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "e2e_support.h"

namespace {

using namespace e2e;

constexpr const char* kWindow = "Zeblo Web Test";

struct Browser {
    const char* app;       // as the application list names it
    const char* program;   // must be installed
    const char* launcher;  // opens the page
};

class Web : public DesktopTest, public ::testing::WithParamInterface<Browser> {};

TEST_P(Web, APageIsReadPressedAndTypedInto) {
    const Browser& browser = GetParam();
    const char* app = browser.app;
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    if (std::system((std::string("command -v ") + browser.program + " >/dev/null").c_str()) != 0) {
        GTEST_SKIP() << "no " << browser.program;
    }
    ASSERT_TRUE(zeblo_launch_app(browser.launcher));
    ASSERT_TRUE(zeblo_wait_for_window(app, kWindow, 0, 30000)) << app << " did not show the page";
    ASSERT_TRUE(eventually([&] { return windowTextHas(app, kWindow, "Not pressed"); }));

    // Text kept on the blocks themselves (Firefox) or on text children
    // (Chromium) is read either way, and once.
    const std::string text = windowText(app, kWindow);
    for (const char* block : {"Text directly in a div.", "A paragraph with ", " inside it.", "Preformatted words.",
                              "Quoted words.", "Section words.", "A paragraph of text."}) {
        EXPECT_NE(text.find(block), std::string::npos) << block << " in\n" << text;
        EXPECT_EQ(text.find(block), text.rfind(block)) << block << " twice in\n" << text;
    }
    EXPECT_NE(text.find("a link"), std::string::npos) << text;

    // Of the three buttons named "Press me", only one shows.
    const json buttons = takeJson(zeblo_get_window_buttons(app, kWindow));
    ASSERT_TRUE(buttons.is_array()) << buttons.dump();
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "Press me"), 1) << buttons.dump();
    EXPECT_TRUE(zeblo_click_button(app, kWindow, "Press me"));
    EXPECT_TRUE(eventually([&] { return windowTextHas(app, kWindow, "Pressed\n"); }));
    EXPECT_TRUE(zeblo_click_checkbox(app, kWindow, "Remember me"));
    EXPECT_TRUE(zeblo_set_checkbox_value(app, kWindow, "Remember me", 0));

    // The input follows the check box in the tab order and takes typed text.
    ASSERT_TRUE(zeblo_focus_app(app, kWindow, true, false, 5000));
    // Each Tab is given time to move the focus, so that none goes past the input.
    for (int tabs = 0; tabs < 4 && !eventually(zeblo_is_in_text_field, 1.0); ++tabs) {
        ASSERT_TRUE(zeblo_send_keystroke(app, "\t", 0));
    }
    ASSERT_TRUE(zeblo_is_in_text_field());
    zeblo_type_text("Hello web", false);
    EXPECT_TRUE(eventually([&] { return windowTextHas(app, kWindow, "Hello web"); }));

    // Closing the tab closes the window.
    EXPECT_TRUE(zeblo_send_keystroke(app, "w", 2));
    EXPECT_TRUE(zeblo_wait_for_window(app, kWindow, 1, 10000));
}

INSTANTIATE_TEST_SUITE_P(Browsers, Web,
                         ::testing::Values(Browser{"Chromium", "chromium", ZEBLO_CHROMIUM_PAGE},
                                           Browser{"Firefox", "firefox-esr", ZEBLO_FIREFOX_PAGE}),
                         [](const auto& info) { return std::string(info.param.program == std::string("chromium") ? "Chromium" : "Firefox"); });

}  // namespace

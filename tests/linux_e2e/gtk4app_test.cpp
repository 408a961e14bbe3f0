// End-to-end tests against our GTK 4 test application (gtk4app/gtk4app.c).
// GTK 4.8 sets the showing state on its windows only, nests a menu button's
// push button in another of the same name, gives check buttons no action,
// and asks for pasted text later than GTK 3.
#include <algorithm>
#include <string>

#include "e2e_support.h"

namespace {

using namespace e2e;

constexpr const char* kApp = "zeblo-gtk4app";
constexpr const char* kWindow = "Zeblo GTK4";

class Gtk4App : public DesktopTest {
protected:
    static void SetUpTestSuite() {
#ifdef ZEBLO_GTK4APP_PATH
        if (!desktopAvailable()) return;
        if (!isRunning(kApp)) {
            ASSERT_TRUE(zeblo_launch_app(ZEBLO_GTK4APP_PATH));
        }
        ASSERT_TRUE(zeblo_wait_for_window(kApp, kWindow, 0, 20000)) << "the GTK 4 application did not start";
#endif
    }

    void SetUp() override {
#ifndef ZEBLO_GTK4APP_PATH
        GTEST_SKIP() << "built without GTK 4";
#endif
        if (!desktopAvailable()) GTEST_SKIP() << "no display";
        ASSERT_TRUE(zeblo_focus_app(kApp, kWindow, true, false, 5000));
    }

    static bool status(const std::string& text) {
        return eventually([&] { return windowTextHas(kApp, kWindow, "Last: " + text + "\n"); });
    }
};

TEST_F(Gtk4App, OnlyWhatShowsIsListedAndPressed) {
    const json buttons = takeJson(zeblo_get_window_buttons(kApp, kWindow));
    ASSERT_TRUE(buttons.is_array()) << buttons.dump();
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "Cancel"), 1) << buttons.dump();
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "Page Two Only"), 0) << buttons.dump();
    // GTK 4 names an element without a name after its class: no title.
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "GtkMenuButton"), 0) << buttons.dump();
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Cancel"));
    EXPECT_TRUE(status("visible cancel"));
    EXPECT_FALSE(zeblo_click_button(kApp, kWindow, "Page Two Only"));
    EXPECT_FALSE(windowTextHas(kApp, kWindow, "Page Two Only"));
    EXPECT_TRUE(windowTextHas(kApp, kWindow, "Page one is shown"));
}

TEST_F(Gtk4App, TheMenuButtonOpensItsPopover) {
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Menu"));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "Say Hello"); })) << windowText(kApp, kWindow);
    const std::uint16_t escape = 53;
    ASSERT_TRUE(zeblo_send_global_keystroke(&escape, 1, 0));
    EXPECT_TRUE(eventually([] { return !windowTextHas(kApp, kWindow, "Say Hello"); }));
}

TEST_F(Gtk4App, ACheckBoxWithoutActionsIsToggled) {
    ASSERT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Enable Feature"));
    EXPECT_TRUE(status("feature 1"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 1));  // already
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));
    EXPECT_TRUE(status("feature 0"));
}

// Twenty pastes in a row, each arriving whole: the clipboard is given back
// only once the entry has taken the text.
TEST_F(Gtk4App, TheEntryTakesTextAndTwentyPastes) {
    // Back to the entry (another test may have moved the focus), with Tab.
    const std::uint16_t tab = 48;
    for (int tabs = 0; tabs < 12 && !eventually(zeblo_is_in_text_field, 0.5); ++tabs) {
        ASSERT_TRUE(zeblo_send_global_keystroke(&tab, 1, 0));
    }
    ASSERT_TRUE(zeblo_is_in_text_field());
    ASSERT_TRUE(zeblo_paste_into_focused_field("direct", false));
    EXPECT_TRUE(status("entry direct"));
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(zeblo_paste_into_focused_field("", false));
        const std::string text = "paste " + std::to_string(i);
        ASSERT_TRUE(zeblo_paste_text(text.c_str()));
        EXPECT_TRUE(status("entry " + text)) << windowText(kApp, kWindow);
    }
}

TEST_F(Gtk4App, AMessageDialogIsAWindow) {
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Ask"));
    ASSERT_TRUE(eventually([] { return takeJson(zeblo_get_window_titles(kApp)).size() == 2; }));
    const std::uint16_t escape = 53;
    // Escape closes it (the dialog's own "close", not its Cancel button).
    ASSERT_TRUE(zeblo_send_global_keystroke(&escape, 1, 0));
    EXPECT_TRUE(status("dialog closed"));
    EXPECT_TRUE(eventually([] { return takeJson(zeblo_get_window_titles(kApp)).size() == 1; }));
}

}  // namespace

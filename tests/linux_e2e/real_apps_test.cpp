// End-to-end tests against applications we did not write: l3afpad (menus,
// typing, pasting with the clipboard restored) and gtk3-widget-factory
// (buttons, checkboxes, window text, closing).
#include <signal.h>

#include <filesystem>
#include <fstream>
#include <vector>

#include "e2e_support.h"
#include "platform/platform.h"

namespace {

using namespace e2e;

constexpr uint32_t kShift = 1, kCommand = 1 << 3;

class L3afpad : public DesktopTest {
protected:
    static constexpr const char* kApp = "l3afpad";

    static void SetUpTestSuite() {
        if (!desktopAvailable()) return;
        // Not running yet: focusing it launches it.
        ASSERT_TRUE(zeblo_focus_app(kApp, nullptr, true, true, 0));
        ASSERT_TRUE(zeblo_wait_for_window(kApp, nullptr, 0, 20000));
    }

    void SetUp() override {
        if (!desktopAvailable()) GTEST_SKIP() << "no display";
        ASSERT_TRUE(zeblo_focus_app(kApp, nullptr, true, false, 0));
        ASSERT_TRUE(eventually([] { return inFront(kApp, nullptr); }));
    }

    static std::string text() { return windowText(kApp, nullptr); }
};

TEST_F(L3afpad, MenusAreReadAndChosen) {
    const json snapshot = takeJson(zeblo_get_app_menus(kApp));
    ASSERT_TRUE(snapshot.is_object());
    ASSERT_GE(snapshot["menus"].size(), 4u);
    EXPECT_EQ(snapshot["menus"][0]["title"], "File");
    const char* selectAll[] = {"Edit", "Select All"};
    EXPECT_TRUE(zeblo_menu_item_exists(kApp, selectAll, 2));
    EXPECT_TRUE(zeblo_menu_item_enabled(kApp, selectAll, 2));
    const char* missing[] = {"Edit", "Frobnicate"};
    EXPECT_FALSE(zeblo_menu_item_exists(kApp, missing, 2));
}

TEST_F(L3afpad, TypingPastingAndTheRestoredClipboard) {
    ASSERT_TRUE(zeblo_is_in_text_field());
    ASSERT_TRUE(zeblo_type_text("Hello\tfrom the keyboard\n", false));
    ASSERT_TRUE(eventually([] { return text().find("[AXTextArea] Hello\tfrom the keyboard\n") != std::string::npos; }))
        << text();

    // Put the typed text on the clipboard the editor's own way. Key events
    // reach the editor in order: once the "!" typed after them shows, the
    // copy has happened.
    ASSERT_TRUE(zeblo_send_keystroke(kApp, "a", kCommand));
    ASSERT_TRUE(zeblo_send_keystroke(kApp, "c", kCommand));
    const uint16_t down = 125;  // Command-Down: to the end, deselecting
    ASSERT_TRUE(zeblo_send_global_keystroke(&down, 1, 0x100000));
    ASSERT_TRUE(zeblo_type_text("!", false));
    ASSERT_TRUE(eventually([] { return text().find("keyboard\n!") != std::string::npos; })) << text();

    // Pasting text that cannot be typed, then the saved clipboard again.
    ASSERT_TRUE(zeblo_paste_text(" | pasted \xC3\xBC\xE2\x86\x92 | "));
    ASSERT_TRUE(eventually([] { return text().find("! | pasted \xC3\xBC\xE2\x86\x92 | ") != std::string::npos; }))
        << text();
    ASSERT_TRUE(zeblo_send_keystroke(kApp, "v", kCommand));
    EXPECT_TRUE(eventually([] { return text().find("| Hello\tfrom the keyboard\n") != std::string::npos; })) << text();

    // An empty clipboard is left empty (GNOME's compositor would offer its
    // copy of the pasted text again).
    zeblo::platform::Platform& desktop = zeblo::platform::current();
    ASSERT_TRUE(desktop.setPasteboardString("x", zeblo::platform::kPasteboardTypeString));
    desktop.clearPasteboard();
    ASSERT_TRUE(zeblo_paste_text(" | once"));
    ASSERT_TRUE(eventually([] { return text().find("| once") != std::string::npos; })) << text();
    EXPECT_EQ(desktop.pasteboardItems().value_or(std::vector<zeblo::platform::PasteboardItem>{1}).size(), 0u);

    // The editor's undo goes through its own binding.
    EXPECT_TRUE(zeblo_send_keystroke(kApp, "z", kCommand));
    EXPECT_FALSE(zeblo_send_keystroke(kApp, "notakey", kShift));
}

class WidgetFactory : public DesktopTest {
protected:
    static constexpr const char* kApp = "gtk3-widget-factory";

    static void SetUpTestSuite() {
        if (!desktopAvailable()) return;
        ASSERT_TRUE(zeblo_launch_app(kApp));
        ASSERT_TRUE(zeblo_wait_for_window(kApp, nullptr, 0, 20000));
    }

    void SetUp() override {
        if (!desktopAvailable()) GTEST_SKIP() << "no display";
    }
};

TEST_F(WidgetFactory, ButtonsCheckboxesAndWindowText) {
    const json buttons = takeJson(zeblo_get_window_buttons(kApp, nullptr));
    ASSERT_TRUE(buttons.is_array()) << buttons.dump();
    EXPECT_NE(std::find(buttons.begin(), buttons.end(), "link button"), buttons.end()) << buttons.dump();

    ASSERT_TRUE(eventually([] { return windowTextHas(kApp, nullptr, "[AXCheckBox Title] checkbutton"); }));
    const std::string text = windowText(kApp, nullptr);
    EXPECT_NE(text.find("[AXTextArea] Lorem ipsum"), std::string::npos) << text;
    EXPECT_NE(text.find("[AXStaticText] label"), std::string::npos) << text;
    // A cell of the tree view: GTK does not cache those, so it is read
    // apart from the rest of the window.
    EXPECT_NE(text.find("[AXUnknown Title] Cimi\n[AXCheckBox Title] Otto\n[AXUnknown Title] chaotic\n"),
              std::string::npos)
        << text;

    // The first "checkbutton" of the page is insensitive: pressing it fails.
    EXPECT_FALSE(zeblo_click_checkbox(kApp, nullptr, "checkbutton"));
    EXPECT_TRUE(zeblo_click_checkbox(kApp, nullptr, "togglebutton"));
    EXPECT_TRUE(zeblo_set_checkbox_value(kApp, nullptr, "togglebutton", 1));
    EXPECT_TRUE(zeblo_set_checkbox_value(kApp, nullptr, "togglebutton", 0));
    EXPECT_FALSE(zeblo_click_checkbox(kApp, nullptr, "no such checkbox"));
    // "Get Busy" sits in a part of the window that is not shown: it is not
    // listed, and it is not pressed.
    EXPECT_EQ(std::find(buttons.begin(), buttons.end(), "Get Busy"), buttons.end()) << buttons.dump();
    EXPECT_FALSE(zeblo_click_button(kApp, nullptr, "Get Busy"));
}

// The process ids of the programs named `program`.
std::vector<pid_t> pidsOf(const std::string& program) {
    std::vector<pid_t> pids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream comm(entry.path() / "comm");
        std::string name;
        if (std::getline(comm, name) && name.size() >= std::min<std::size_t>(program.size(), 15) &&
            program.rfind(name, 0) == 0) {
            pids.push_back(static_cast<pid_t>(std::stoi(entry.path().filename().string())));
        }
    }
    return pids;
}

// Seconds that `call` takes.
template <class Call>
double secondsOf(Call call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A stopped application (SIGSTOP) neither slows calls about another one nor
// drops out of the list; calls about it fail within their reply limits
// (1 s each; the limits below are generous); once it continues it answers.
TEST_F(WidgetFactory, AStoppedApplicationStallsNothing) {
    ASSERT_TRUE(zeblo_focus_app("l3afpad", nullptr, false, true, 20000));
    ASSERT_TRUE(zeblo_wait_for_window("l3afpad", nullptr, 0, 20000));
    const std::vector<pid_t> pids = pidsOf(kApp);
    ASSERT_EQ(pids.size(), 1u);
    const auto lookUpOther = [] { EXPECT_TRUE(zeblo_window_exists("l3afpad", nullptr)); };
    const double healthy = secondsOf(lookUpOther);

    ASSERT_EQ(kill(pids[0], SIGSTOP), 0);
    EXPECT_LT(secondsOf(lookUpOther), healthy + 0.6);
    EXPECT_LT(secondsOf(lookUpOther),
              healthy + 0.3);  // it is known to be silent now
    EXPECT_TRUE(isRunning(kApp));
    EXPECT_LT(secondsOf([] { EXPECT_FALSE(zeblo_window_exists(kApp, nullptr)); }), 4.0);
    EXPECT_LT(secondsOf([] { EXPECT_TRUE(takeJson(zeblo_get_window_text(kApp, nullptr)).contains("error")); }), 4.0);
    EXPECT_LT(secondsOf([] { EXPECT_FALSE(zeblo_wait_for_window(kApp, nullptr, 0, 2000)); }), 5.0);
    EXPECT_LT(secondsOf([] { EXPECT_FALSE(zeblo_click_button(kApp, nullptr, "Get Busy")); }), 4.0);
    // Silent is not gone: its window is not seen to go, and it is not closed.
    EXPECT_LT(secondsOf([] { EXPECT_FALSE(zeblo_wait_for_window(kApp, nullptr, 1, 2000)); }), 5.0);
    EXPECT_LT(secondsOf([] { EXPECT_FALSE(zeblo_close_window(kApp, nullptr, 1500)); }), 5.0);

    ASSERT_EQ(kill(pids[0], SIGCONT), 0);
    EXPECT_TRUE(eventually([] { return zeblo_window_exists(kApp, nullptr); }, 5.0));
}

TEST_F(WidgetFactory, ClosingTheWindowEndsIt) {
    ASSERT_TRUE(zeblo_window_exists(kApp, nullptr));
    ASSERT_TRUE(zeblo_close_window(kApp, nullptr, 10000));
    EXPECT_TRUE(zeblo_wait_for_window(kApp, nullptr, 1, 10000));
    EXPECT_TRUE(eventually([] { return !isRunning(kApp); }));
}

}  // namespace

// End-to-end tests against our own GTK test application (testapp.py): menus,
// buttons, checkboxes, the combo box, text fields and a dialog.
#include <signal.h>

#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "e2e_support.h"
#include "platform/platform.h"

namespace {

using namespace e2e;

constexpr const char* kApp = "zeblo-testapp";
constexpr const char* kWindow = "Zeblo Test";

class TestApp : public DesktopTest {
protected:
    static void SetUpTestSuite() {
        if (!desktopAvailable()) return;
        if (!isRunning(kApp)) {
            ASSERT_TRUE(zeblo_launch_app(ZEBLO_TESTAPP_PATH));
        }
        ASSERT_TRUE(zeblo_wait_for_window(kApp, kWindow, 0, 20000)) << "the test application did not start";
    }

    void SetUp() override {
        if (!desktopAvailable()) GTEST_SKIP() << "no display";
        ASSERT_TRUE(zeblo_focus_app(kApp, kWindow, true, false, 5000));
        ASSERT_TRUE(eventually([] { return inFront(kApp, kWindow); }));
    }

    static bool click(std::vector<const char*> path) {
        return zeblo_menu_click(kApp, path.data(), static_cast<int32_t>(path.size()));
    }
    static bool exists(std::vector<const char*> path) {
        return zeblo_menu_item_exists(kApp, path.data(), static_cast<int32_t>(path.size()));
    }
    static bool enabled(std::vector<const char*> path) {
        return zeblo_menu_item_enabled(kApp, path.data(), static_cast<int32_t>(path.size()));
    }
    static bool status(std::string_view text) {
        return eventually([&] { return windowTextHas(kApp, kWindow, "Last: " + std::string(text)); });
    }
};

TEST_F(TestApp, MenuSnapshotMapsTitlesStatesAndKeyBindings) {
    const json snapshot = takeJson(zeblo_get_app_menus(kApp));
    ASSERT_TRUE(snapshot.is_object()) << snapshot.dump();
    EXPECT_EQ(snapshot.value("app", ""), kApp);
    const json& menus = snapshot["menus"];
    ASSERT_EQ(menus.size(), 3u);
    EXPECT_EQ(menus[0]["title"], "File");
    EXPECT_EQ(menus[2]["title"], "View");

    const json* newItem = findItem(menus[0]["children"], "New");
    ASSERT_NE(newItem, nullptr);
    EXPECT_EQ((*newItem)["cmdChar"], "N");
    EXPECT_EQ((*newItem)["cmdModifiers"], 0);  // Control alone: the command key

    const json* disabled = findItem(menus[1]["children"], "Disabled Item");
    ASSERT_NE(disabled, nullptr);
    EXPECT_FALSE((*disabled)["enabled"].get<bool>());

    const json& view = menus[2]["children"];
    EXPECT_TRUE((*findItem(view, "Show Toolbar"))["checked"].get<bool>());
    const json* wrap = findItem(view, "Word Wrap");
    EXPECT_FALSE((*wrap)["checked"].get<bool>());
    EXPECT_EQ((*wrap)["cmdModifiers"], 1);  // with Shift
    const json* zoom = findItem(view, "Zoom");
    ASSERT_NE(zoom, nullptr);
    ASSERT_TRUE(zoom->contains("children"));
    EXPECT_NE(findItem((*zoom)["children"], "Zoom Out"), nullptr);
    EXPECT_EQ((*findItem((*zoom)["children"], "Zoom Out"))["path"], json({"View", "Zoom"}));
}

TEST_F(TestApp, MenuPathsExistAreEnabledAndClick) {
    EXPECT_TRUE(exists({"View", "Zoom", "Zoom In"}));
    EXPECT_FALSE(exists({"View", "Zoom", "Zoom Sideways"}));
    EXPECT_TRUE(enabled({"File", "New"}));
    EXPECT_FALSE(enabled({"Edit", "Disabled Item"}));

    ASSERT_TRUE(click({"View", "Zoom", "Zoom In"}));
    EXPECT_TRUE(status("Zoom In"));
    ASSERT_TRUE(click({"File", "New"}));
    EXPECT_TRUE(status("New"));
    // An insensitive item exposes no action: the click fails.
    EXPECT_FALSE(click({"Edit", "Disabled Item"}));
}

TEST_F(TestApp, CheckedMenuItemTogglesThroughAClick) {
    ASSERT_TRUE(click({"View", "Word Wrap"}));
    EXPECT_TRUE(eventually([] {
        const json snapshot = takeJson(zeblo_get_app_menus(kApp));
        const json* wrap = snapshot.is_object() ? findItem(snapshot["menus"][2]["children"], "Word Wrap") : nullptr;
        return wrap != nullptr && (*wrap)["checked"].get<bool>();
    }));
    ASSERT_TRUE(click({"View", "Word Wrap"}));  // back as it was
}

// Every key equivalent of the snapshot fires its item when sent back the way
// a host would: a character by its unshifted key with Shift where it needs
// it ("+" is "=" with Shift), a key without a key text (Page Up) by its raw
// key code.
TEST_F(TestApp, SnapshotKeyEquivalentsAreSentBack) {
    const json snapshot = takeJson(zeblo_get_app_menus(kApp));
    ASSERT_TRUE(snapshot.is_object()) << snapshot.dump();
    const json* zoom = findItem(snapshot["menus"][2]["children"], "Zoom");
    ASSERT_NE(zoom, nullptr);
    struct Sent {
        const char* title;
        const char* cmdChar;
        const char* key;  // null: sent by its key code
        int shift;
    };
    const Sent keys[] = {
        {"Zoom In", "+", "=", 1}, {"Zoom Out", "-", "-", 0}, {"Actual Size", ".", ".", 0}, {"First Page", "pageup", nullptr, 0}};
    for (const Sent& sent : keys) {
        const json* item = findItem((*zoom)["children"], sent.title);
        ASSERT_NE(item, nullptr) << sent.title;
        EXPECT_EQ((*item)["cmdChar"], sent.cmdChar) << sent.title;
        // Menu modifier bits (1 shift, 2 option, 4 control, 8 no command) to
        // keystroke bits (1 shift, 2 control, 4 option, 8 command).
        const int bits = (*item)["cmdModifiers"].get<int>();
        const int modifiers = (bits & 1) | ((bits & 2) << 1) | ((bits & 4) >> 1) | ((bits & 8) ? 0 : 8);
        ASSERT_TRUE(click({"File", "New"}));
        ASSERT_TRUE(status("New"));
        if (sent.key != nullptr) {
            ASSERT_TRUE(zeblo_send_keystroke(kApp, sent.key, modifiers | sent.shift));
        } else {
            const std::uint16_t pageUp[] = {116};
            ASSERT_TRUE(zeblo_send_global_keystroke(pageUp, 1, (modifiers & 8) ? 0x100000 : 0));
        }
        EXPECT_TRUE(status(sent.title)) << sent.title;
    }
}

TEST_F(TestApp, ButtonsAreListedAndPressed) {
    const json buttons = takeJson(zeblo_get_window_buttons(kApp, kWindow));
    ASSERT_TRUE(buttons.is_array()) << buttons.dump();
    // The hidden "Press Me" twins are neither listed nor pressed.
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "Press Me"), 1) << buttons.dump();
    EXPECT_NE(std::find(buttons.begin(), buttons.end(), "Disabled Button"), buttons.end());

    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Press Me"));
    EXPECT_TRUE(status("pressed"));
    EXPECT_FALSE(zeblo_click_button(kApp, kWindow, "Disabled Button"));
    EXPECT_FALSE(zeblo_click_button(kApp, kWindow, "No Such Button"));
}

TEST_F(TestApp, CheckboxesToggleAndTakeAValue) {
    ASSERT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Enable Feature"));
    EXPECT_TRUE(status("feature 1"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));
    EXPECT_TRUE(status("feature 0"));
    // Already 0: nothing changes, and the write still succeeds.
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 1));
    EXPECT_TRUE(status("feature 1"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));
    // A value other than 0 and 1 has no meaning for a GTK check box.
    EXPECT_FALSE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 2));
}

// A checklist's toggle cells are check boxes named by their row.
TEST_F(TestApp, ChecklistCellsToggleAndTakeAValue) {
    EXPECT_TRUE(windowTextHas(kApp, kWindow, "[AXCheckBox Title] Spell Check\n"));
    ASSERT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Auto Save"));
    EXPECT_TRUE(status("Auto Save 1"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Spell Check", 0));
    EXPECT_TRUE(status("Spell Check 0"));
    ASSERT_TRUE(click({"File", "New"}));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Spell Check", 0));  // already 0: not pressed
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Spell Check", 1));
    EXPECT_TRUE(status("Spell Check 1"));
    ASSERT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Auto Save"));
    EXPECT_TRUE(status("Auto Save 0"));
}

// Spin buttons show their values and take text as text fields do.
TEST_F(TestApp, SpinButtonsAreTextFields) {
    EXPECT_TRUE(windowTextHas(kApp, kWindow, "[AXTextField] 40\n[AXTextField] 72\n")) << windowText(kApp, kWindow);
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Focus Size"));
    EXPECT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    EXPECT_TRUE(zeblo_paste_into_focused_field("500", true));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] 500\n[AXTextField] 72\n"); }));
    EXPECT_TRUE(zeblo_paste_into_focused_field("40", true));
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Focus Name"));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] 40\n"); }));
}

TEST_F(TestApp, WindowTextShowsLabelsAndValues) {
    const std::string text = windowText(kApp, kWindow);
    EXPECT_NE(text.find("[AXStaticText] Last:"), std::string::npos) << text;
    EXPECT_NE(text.find("[AXCheckBox Title] Remember Me"), std::string::npos) << text;
    EXPECT_NE(text.find("[AXPopUpButton] Red"), std::string::npos) << text;
    EXPECT_NE(text.find("[AXButton Title] Press Me"), std::string::npos) << text;
    // The password field shows one bullet per character, never the password.
    EXPECT_NE(text.find("[AXSecureTextField] \u2022\u2022\u2022\u2022\u2022\u2022\u2022\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("hunter2"), std::string::npos) << text;
}

TEST_F(TestApp, TypingAndDirectEntryReachTheFocusedField) {
    ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    ASSERT_TRUE(zeblo_paste_into_focused_field("direct entry", false));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] direct entry"); }));
    ASSERT_TRUE(zeblo_type_text(" + typed", true));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, " + typed"); })) << windowText(kApp, kWindow);
    EXPECT_FALSE(zeblo_type_text("\xC3\xA9", false));  // not on a US keyboard
}

// An application that gets to the paste key late (stopped for 0.3 s) still
// pastes the pasted text, not the clipboard given back after it, which is
// back once the paste is done.
TEST_F(TestApp, ALatePasteStillPastesTheText) {
    zeblo::platform::Platform& desktop = zeblo::platform::current();
    pid_t pid = 0;
    for (const zeblo::platform::RunningApp& app : desktop.runningApplications()) {
        if (app.localizedName == kApp) pid = app.pid;
    }
    ASSERT_GT(pid, 0);
    ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    ASSERT_TRUE(zeblo_paste_into_focused_field("", false));
    ASSERT_TRUE(desktop.setPasteboardString("before", zeblo::platform::kPasteboardTypeString));
    ASSERT_EQ(kill(pid, SIGSTOP), 0);
    std::thread resume([pid] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        kill(pid, SIGCONT);
    });
    EXPECT_TRUE(zeblo_paste_text("pasted late"));
    resume.join();
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] pasted late\n"); }))
        << windowText(kApp, kWindow);
    const auto items = desktop.pasteboardItems();
    ASSERT_TRUE(items && items->size() == 1);
    const std::optional<zeblo::platform::Bytes>& text = (*items)[0].entries.at(0).second;
    ASSERT_TRUE(text);
    EXPECT_EQ(std::string(text->begin(), text->end()), "before");
}

// Every character typing takes arrives as written, the first one included.
TEST_F(TestApp, EveryTypeableCharacterArrives) {
    std::string all;
    for (char c = 0x20; c < 0x7f; ++c) all += c;
    ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    ASSERT_TRUE(zeblo_paste_into_focused_field("", false));
    ASSERT_TRUE(zeblo_type_text(all.c_str(), false));
    EXPECT_TRUE(eventually([&] { return windowTextHas(kApp, kWindow, "[AXTextField] " + all + "\n"); }))
        << windowText(kApp, kWindow);
}

// Typed text arrives as written under a German and a French layout, the
// shifted and AltGr symbols and the dead-key ones included, and keystrokes
// still reach the menu accelerators. A Wayland session keeps the layout it
// was started with (wayland-session.sh's ZEBLO_WAYLAND_LAYOUT).
TEST_F(TestApp, TypingFollowsTheActiveLayout) {
    const char* sessionLayout = std::getenv("ZEBLO_WAYLAND_LAYOUT");
    if (onWayland() && sessionLayout == nullptr) GTEST_SKIP() << "the session has the US layout";
    const std::string typed = "a@yz/Q-1 {[|]}\\#$%&*+=?!<>;:_\"'^`~";
    for (const char* layout : onWayland() ? std::vector<const char*>{sessionLayout} : std::vector{"de", "fr"}) {
        if (!onWayland()) {
            ASSERT_EQ(std::system((std::string("setxkbmap ") + layout).c_str()), 0);
        }
        const std::unique_ptr<const char, void (*)(const char*)> restore("us", [](const char*) {
            if (!onWayland()) {
                EXPECT_EQ(std::system("setxkbmap us"), 0);
            }
        });
        ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
        ASSERT_TRUE(zeblo_paste_into_focused_field("", false));
        ASSERT_TRUE(zeblo_type_text(typed.c_str(), false));
        EXPECT_TRUE(eventually([&] { return windowTextHas(kApp, kWindow, "[AXTextField] " + typed + "\n"); }))
            << layout << ": " << windowText(kApp, kWindow);
        ASSERT_TRUE(click({"File", "New"}));
        ASSERT_TRUE(status("New"));
        ASSERT_TRUE(zeblo_send_keystroke(kApp, "z", 1 << 3));
        EXPECT_TRUE(status("Undo")) << layout;
        ASSERT_TRUE(zeblo_send_keystroke(kApp, "=", 1 | 1 << 3));  // "+"
        EXPECT_TRUE(status("Zoom In")) << layout;
    }
}

TEST_F(TestApp, DialogOpensIsFoundAndCloses) {
    EXPECT_EQ(takeJson(zeblo_get_frontmost_info()), json({{"app", kApp}, {"window", kWindow}}));
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Open Dialog"));
    ASSERT_TRUE(zeblo_wait_for_window(kApp, "Test Dialog", 0, 10000));
    EXPECT_TRUE(zeblo_window_exists(kApp, "Test Dialog"));
    const json titles = takeJson(zeblo_get_window_titles(kApp));
    EXPECT_NE(std::find(titles.begin(), titles.end(), "Test Dialog"), titles.end()) << titles.dump();
    EXPECT_TRUE(zeblo_wait_for_window(kApp, "Test Dialog", 2, 10000));  // a new dialog takes the focus
    EXPECT_TRUE(windowTextHas(kApp, "Test Dialog", "This is the test dialog"));

    ASSERT_TRUE(zeblo_close_window(kApp, "Test Dialog", 5000));
    EXPECT_TRUE(zeblo_wait_for_window(kApp, "Test Dialog", 1, 5000));
    EXPECT_FALSE(zeblo_window_exists(kApp, "Test Dialog"));
    EXPECT_TRUE(status("dialog closed"));
}

// libatspi and Xlib are not thread-safe: calls from several threads are
// serialised by the backend and give what a single thread gets.
TEST_F(TestApp, ConcurrentCallsGiveTheSingleThreadedResults) {
    const std::string menus = take(zeblo_get_app_menus(kApp));
    const std::string text = windowText(kApp, kWindow);
    ASSERT_NE(menus, "{}");
    ASSERT_FALSE(text.empty());
    std::vector<std::thread> threads;
    std::vector<int> mismatches(3, 0);
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < 8; ++round) {
                if (take(zeblo_get_app_menus(kApp)) != menus) ++mismatches[t];
                if (windowText(kApp, kWindow) != text) ++mismatches[t];
                if (!zeblo_menu_item_exists(kApp, std::vector<const char*>{"View", "Zoom", "Zoom In"}.data(), 3))
                    ++mismatches[t];
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(mismatches, std::vector<int>(3, 0));
}

TEST_F(TestApp, PopupButtonListsItsMenu) {
    const json items = takeJson(zeblo_get_popup_menu_items(kApp, kWindow, "Red"));
    EXPECT_EQ(items, json({"Red", "Green", "Blue"}));
    // The opened list holds the keyboard until Escape closes it; the test
    // application then gives the focus back to its name field.
    const uint16_t escape = 53;
    EXPECT_TRUE(eventually([&] { return zeblo_send_global_keystroke(&escape, 1, 0) && zeblo_is_in_text_field(); }));
}

}  // namespace

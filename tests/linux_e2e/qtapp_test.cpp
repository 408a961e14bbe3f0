// End-to-end tests against our own Qt Widgets test application (qtapp/): Qt
// implements no Collection interface, names its actions "Press" and "Toggle",
// gives its shortcuts as "Ctrl+N" and shows a combo box's items as a list.
#include <algorithm>
#include <vector>

#include "e2e_support.h"

namespace {

using namespace e2e;

// The test application as built against each Qt found (Qt 5, Qt 6), and the
// name it registers with; the build under test is kApp.
struct QtBuild {
    const char* path;
    const char* app;
};
const std::vector<QtBuild> kBuilds = {
#ifdef ZEBLO_QTAPP_PATH
    {ZEBLO_QTAPP_PATH, "zeblo-qtapp"},
#endif
#ifdef ZEBLO_QT6APP_PATH
    {ZEBLO_QT6APP_PATH, "zeblo-qt6app"},
#endif
};
const char* kApp = nullptr;
constexpr const char* kWindow = "Zeblo Qt Test";

class QtApp : public DesktopTest, public ::testing::WithParamInterface<QtBuild> {
protected:
    void SetUp() override {
        if (!desktopAvailable()) GTEST_SKIP() << "no display";
        kApp = GetParam().app;
        if (!isRunning(kApp)) {
            ASSERT_TRUE(zeblo_launch_app(GetParam().path));
            ASSERT_TRUE(zeblo_wait_for_window(kApp, kWindow, 0, 20000)) << "the Qt test application did not start";
        }
        ASSERT_TRUE(zeblo_focus_app(kApp, kWindow, true, false, 5000));
        ASSERT_TRUE(eventually([] { return inFront(kApp, kWindow); }));
    }

    static bool click(std::vector<const char*> path) {
        return zeblo_menu_click(kApp, path.data(), static_cast<int32_t>(path.size()));
    }
    static bool status(std::string_view text) {
        return eventually([&] { return windowTextHas(kApp, kWindow, "Last: " + std::string(text)); });
    }
};

// The snapshot, paths that exist and are enabled, a click, and a keystroke
// sent back from a snapshot's key equivalent.
TEST_P(QtApp, MenusReadClickAndSendTheirKeys) {
    const json snapshot = takeJson(zeblo_get_app_menus(kApp));
    ASSERT_TRUE(snapshot.is_object() && snapshot.contains("menus")) << snapshot.dump();
    const json& menus = snapshot["menus"];
    ASSERT_EQ(menus.size(), 4u);
    EXPECT_EQ(menus[3]["children"][0], json::parse(R"({"title": "About", "path": ["Help"], "enabled": true,
                                                        "checked": false})"));  // no key for the mnemonic
    const json* newItem = findItem(menus[0]["children"], "New");
    ASSERT_NE(newItem, nullptr);
    EXPECT_EQ((*newItem)["cmdChar"], "N");
    EXPECT_EQ((*newItem)["cmdModifiers"], 0);
    EXPECT_FALSE((*findItem(menus[1]["children"], "Disabled Item"))["enabled"].get<bool>());
    const json& view = menus[2]["children"];
    EXPECT_TRUE((*findItem(view, "Show Toolbar"))["checked"].get<bool>());
    EXPECT_EQ((*findItem(view, "Word Wrap"))["cmdModifiers"], 1);
    const json* zoom = findItem(view, "Zoom");
    ASSERT_TRUE(zoom != nullptr && zoom->contains("children")) << view.dump();
    EXPECT_EQ((*findItem((*zoom)["children"], "Zoom In"))["cmdChar"], "+");
    EXPECT_EQ((*findItem((*zoom)["children"], "First Page"))["cmdChar"], "pageup");

    const std::vector<const char*> zoomIn{"View", "Zoom", "Zoom In"}, disabled{"Edit", "Disabled Item"};
    EXPECT_TRUE(zeblo_menu_item_exists(kApp, zoomIn.data(), 3));
    EXPECT_TRUE(zeblo_menu_item_enabled(kApp, zoomIn.data(), 3));
    EXPECT_TRUE(zeblo_menu_item_exists(kApp, disabled.data(), 2));
    EXPECT_FALSE(zeblo_menu_item_enabled(kApp, disabled.data(), 2));
    ASSERT_TRUE(click({"View", "Zoom", "Zoom In"}));
    EXPECT_TRUE(status("Zoom In"));
    ASSERT_TRUE(zeblo_send_keystroke(kApp, "n", 1 << 3));
    EXPECT_TRUE(status("New"));
    // Page Up has no key text; its raw key code (116) reaches it.
    const std::uint16_t pageUp[] = {116};
    ASSERT_TRUE(zeblo_send_global_keystroke(pageUp, 1, 0x100000));
    EXPECT_TRUE(status("First Page"));
}

TEST_P(QtApp, ButtonsCheckBoxesAndTheComboBox) {
    const json buttons = takeJson(zeblo_get_window_buttons(kApp, kWindow));
    // The hidden "Press Me" is neither listed nor pressed.
    EXPECT_EQ(std::count(buttons.begin(), buttons.end(), "Press Me"), 1) << buttons.dump();
    ASSERT_TRUE(zeblo_click_button(kApp, kWindow, "Press Me"));
    EXPECT_TRUE(status("pressed 1"));
    EXPECT_FALSE(zeblo_click_button(kApp, kWindow, "Disabled Button"));

    ASSERT_TRUE(zeblo_click_checkbox(kApp, kWindow, "Enable Feature"));
    EXPECT_TRUE(status("feature 1"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));
    EXPECT_TRUE(status("feature 0"));
    ASSERT_TRUE(zeblo_set_checkbox_value(kApp, kWindow, "Enable Feature", 0));  // already 0

    const std::string text = windowText(kApp, kWindow);
    EXPECT_NE(text.find("[AXCheckBox Title] Remember Me"), std::string::npos) << text;
    EXPECT_NE(text.find("[AXMenuBarItem Title] File"), std::string::npos) << text;
    EXPECT_EQ(takeJson(zeblo_get_popup_menu_items(kApp, kWindow, "Red")), json({"Red", "Green", "Blue"}));
    const uint16_t escape = 53;
    EXPECT_TRUE(eventually([&] { return zeblo_send_global_keystroke(&escape, 1, 0) && zeblo_is_in_text_field(); }));
}

TEST_P(QtApp, TextReachesTheFocusedLineEdit) {
    ASSERT_TRUE(eventually([] { return zeblo_is_in_text_field(); }));
    ASSERT_TRUE(zeblo_paste_into_focused_field("direct", false));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] direct\n"); }))
        << windowText(kApp, kWindow);
    ASSERT_TRUE(zeblo_type_text(" typed", false));
    ASSERT_TRUE(zeblo_paste_text(" pasted"));
    EXPECT_TRUE(eventually([] { return windowTextHas(kApp, kWindow, "[AXTextField] direct typed pasted\n"); }))
        << windowText(kApp, kWindow);
}

TEST_P(QtApp, DialogOpensFromTheMenuAndCloses) {
    const json info = takeJson(zeblo_get_frontmost_info());
    EXPECT_EQ(info, json({{"app", kApp}, {"window", kWindow}}));
    ASSERT_TRUE(click({"File", "Open Dialog…"}));
    ASSERT_TRUE(zeblo_wait_for_window(kApp, "Qt Test Dialog", 0, 10000));
    const json titles = takeJson(zeblo_get_window_titles(kApp));
    EXPECT_NE(std::find(titles.begin(), titles.end(), "Qt Test Dialog"), titles.end()) << titles.dump();
    EXPECT_TRUE(zeblo_wait_for_window(kApp, "Qt Test Dialog", 2, 10000));
    EXPECT_TRUE(windowTextHas(kApp, "Qt Test Dialog", "This is the Qt test dialog"));
    ASSERT_TRUE(zeblo_close_window(kApp, "Qt Test Dialog", 5000));
    EXPECT_TRUE(zeblo_wait_for_window(kApp, "Qt Test Dialog", 1, 5000));
    EXPECT_FALSE(zeblo_window_exists(kApp, "Qt Test Dialog"));
    EXPECT_TRUE(status("dialog closed"));
}

INSTANTIATE_TEST_SUITE_P(Builds, QtApp, ::testing::ValuesIn(kBuilds),
                         [](const auto& info) { return std::string(info.param.app).substr(6); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(QtApp);  // built without Qt

}  // namespace

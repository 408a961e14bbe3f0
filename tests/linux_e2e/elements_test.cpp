// End-to-end tests of the element interface on our GTK 3, GTK 4 and Qt
// applications and the web test page in Chromium: every control found and
// acted on by its reference, a form filled by the labels of its fields, a
// popover's and a context menu's items chosen, stale references refused.
// What a test changes it puts back, for the other tests of the application.
#include <zeblo/zeblo_plus.h>

#include "e2e_support.h"

namespace {

using namespace e2e;

// A query's single match, or a failure naming what was found.
json only(const json& query) {
    const json found = takeJson(zeblo_element_find(query.dump().c_str()));
    EXPECT_EQ(found.value("count", -1), 1) << query.dump() << " found " << found.dump();
    return found.value("matches", json::array()).empty() ? json::object() : found["matches"][0];
}

// The result of acting on the single match of `query`.
json act(const json& query, const char* action, const char* value = nullptr) {
    const std::string ref = only(query).value("ref", "");
    return takeJson(zeblo_element_act(ref.c_str(), action, value));
}

bool done(const json& result) { return result.value("ok", false); }

// The status line of an application's window ("Last: ..."), as a user reads it.
bool statusIs(const char* app, const char* window, const std::string& text) {
    return eventually([&] {
        return takeJson(zeblo_element_find(json{{"app", app}, {"window", window}, {"name", "Last: " + text}}
                                               .dump()
                                               .c_str()))
                   .value("count", 0) > 0;
    });
}

class Elements : public DesktopTest {
protected:
    static bool ready(const char* app, const char* path, const char* window) {
        if (!isRunning(app) && !zeblo_launch_app(path)) return false;
        return zeblo_wait_for_window(app, window, 0, 20000) && zeblo_focus_app(app, window, true, false, 5000);
    }
};

TEST_F(Elements, Gtk3EveryControlByReferenceAFormByLabelsAPopoverAndAContextMenu) {
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    const char* app = "zeblo-testapp";
    const char* win = "Zeblo Test";
    ASSERT_TRUE(ready(app, ZEBLO_TESTAPP_PATH, win));
    const json in = {{"app", app}, {"window", win}};
    const auto q = [&](json more) {
        more.update(in);
        return more;
    };

    // The tree lists the shown "Press Me" only, each control with a reference.
    const json tree = takeJson(zeblo_element_tree(in.dump().c_str()));
    ASSERT_TRUE(tree.contains("tree")) << tree.dump();
    EXPECT_EQ(takeJson(zeblo_element_find(q({{"role", "button"}, {"name", "Press Me"}}).dump().c_str()))["count"], 1);

    EXPECT_TRUE(done(act(q({{"role", "button"}, {"name", "Press Me"}}), "press")));
    EXPECT_TRUE(statusIs(app, win, "pressed"));
    EXPECT_EQ(act(q({{"name", "Disabled Button"}}), "press")["error"]["case"], "disabled");
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "check")["changed"], true);
    EXPECT_TRUE(statusIs(app, win, "feature 1"));
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "uncheck")["changed"], true);
    EXPECT_TRUE(done(act(q({{"role", "checkbox"}, {"name", "Auto Save"}}), "check")));  // a checklist cell
    EXPECT_TRUE(statusIs(app, win, "Auto Save 1"));
    EXPECT_TRUE(done(act(q({{"role", "checkbox"}, {"name", "Auto Save"}}), "uncheck")));
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"value", "40"}}), "increment")));  // a spin button
    EXPECT_TRUE(eventually([&] { return only(q({{"role", "textfield"}, {"value", "41"}})).contains("ref"); }));
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"value", "41"}}), "decrement")));
    EXPECT_TRUE(done(act(q({{"role", "popupbutton"}}), "set_value", "Blue")));
    EXPECT_TRUE(eventually([&] { return only(q({{"role", "popupbutton"}})).value("name", "") == "Blue"; }));
    EXPECT_TRUE(done(act(q({{"role", "popupbutton"}}), "set_value", "Red")));
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "Grace")));  // its placeholder
    EXPECT_EQ(only(q({{"role", "textfield"}, {"name", "Name"}})).value("value", ""), "Grace");
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "")));

    // The dialog from the menu bar; its form filled by the labels beside the
    // fields (its grid lists them backwards), its popover's item chosen.
    const json file = act(q({{"role", "menubaritem"}, {"name", "File"}}), "open_menu");
    ASSERT_TRUE(done(file)) << file.dump();
    std::string openDialog;
    for (const json& item : file["menu"]) {
        if (item.value("name", "") == "Open Dialog") openDialog = item.value("ref", "");
    }
    ASSERT_FALSE(openDialog.empty()) << file.dump();
    ASSERT_TRUE(done(takeJson(zeblo_element_act(openDialog.c_str(), "press", nullptr))));
    const json dialog = {{"app", app}, {"window", "Test Dialog"}};
    const auto d = [&](json more) {
        more.update(dialog);
        return more;
    };
    ASSERT_TRUE(done(takeJson(zeblo_element_wait(d({{"role", "button"}, {"name", "OK"}}).dump().c_str()))));
    const std::string ok = only(d({{"role", "button"}, {"name", "OK"}}))["ref"];
    EXPECT_TRUE(done(act(d({{"role", "textfield"}, {"name", "Full name"}}), "set_value", "Ada")));
    EXPECT_TRUE(done(act(d({{"role", "textfield"}, {"name", "Email"}}), "set_value", "ada@example.org")));
    EXPECT_TRUE(done(act(d({{"name", "Subscribe"}}), "check")));
    const json sizes = act(d({{"name", "Size"}}), "open_menu");
    std::string large;
    for (const json& item : sizes.value("menu", json::array())) {
        if (item.value("name", "") == "Large") large = item.value("ref", "");
    }
    ASSERT_FALSE(large.empty()) << sizes.dump();
    EXPECT_TRUE(done(takeJson(zeblo_element_act(large.c_str(), "press", nullptr))));
    // The email field's context menu, in a window of its own.
    const json context = act(d({{"role", "textfield"}, {"name", "Email"}}), "open_menu");
    std::string selectAll;
    for (const json& item : context.value("menu", json::array())) {
        if (item.value("name", "") == "Select All") selectAll = item.value("ref", "");
    }
    ASSERT_FALSE(selectAll.empty()) << context.dump();
    EXPECT_TRUE(done(takeJson(zeblo_element_act(selectAll.c_str(), "press", nullptr))));
    EXPECT_TRUE(done(takeJson(zeblo_element_act(ok.c_str(), "press", nullptr))));
    EXPECT_TRUE(statusIs(app, win, "form Ada <ada@example.org> subscribe 1 size Large"));

    // Once the dialog is gone its references act on nothing.
    EXPECT_TRUE(done(act(d({{"role", "button"}, {"name", "Dismiss"}}), "press")));
    ASSERT_TRUE(zeblo_wait_for_window(app, "Test Dialog", 1, 5000));
    EXPECT_EQ(takeJson(zeblo_element_act(ok.c_str(), "press", nullptr))["error"]["kind"], "stale");
}

TEST_F(Elements, Gtk4APopoverItemAFieldByItsLabelAndACheckBoxWithoutActions) {
#ifndef ZEBLO_GTK4APP_PATH
    GTEST_SKIP() << "built without GTK 4";
#else
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    const char* app = "zeblo-gtk4app";
    const char* win = "Zeblo GTK4";
    ASSERT_TRUE(ready(app, ZEBLO_GTK4APP_PATH, win));
    const json in = {{"app", app}, {"window", win}};
    const auto q = [&](json more) {
        more.update(in);
        return more;
    };
    const json menu = act(q({{"role", "button"}, {"name", "Menu"}}), "open_menu");
    std::string hello;
    for (const json& item : menu.value("menu", json::array())) {
        if (item.value("name", "") == "Say Hello") hello = item.value("ref", "");
    }
    ASSERT_FALSE(hello.empty()) << menu.dump();
    EXPECT_TRUE(done(takeJson(zeblo_element_act(hello.c_str(), "press", nullptr))));
    EXPECT_TRUE(statusIs(app, win, "hello"));
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "Ada")));
    EXPECT_TRUE(statusIs(app, win, "entry Ada"));
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "")));
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "check")["changed"], true);
    EXPECT_TRUE(statusIs(app, win, "feature 1"));
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "uncheck")["changed"], true);
    EXPECT_EQ(takeJson(zeblo_element_find(q({{"name", "Page Two Only"}}).dump().c_str()))["count"], 0);
#endif
}

TEST_F(Elements, QtEveryControlByReference) {
#if !defined(ZEBLO_QTAPP_PATH)
    GTEST_SKIP() << "built without Qt";
#else
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    const char* app = "zeblo-qtapp";
    const char* win = "Zeblo Qt Test";
    ASSERT_TRUE(ready(app, ZEBLO_QTAPP_PATH, win));
    const json in = {{"app", app}, {"window", win}};
    const auto q = [&](json more) {
        more.update(in);
        return more;
    };
    // (Its "Press Me" counts its presses for the application's own tests.)
    EXPECT_EQ(takeJson(zeblo_element_find(q({{"role", "button"}, {"name", "Press Me"}}).dump().c_str()))["count"], 1);
    EXPECT_EQ(act(q({{"name", "Disabled Button"}}), "press")["error"]["case"], "disabled");
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "check")["changed"], true);
    EXPECT_TRUE(statusIs(app, win, "feature 1"));
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Enable Feature"}}), "uncheck")["changed"], true);
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "Ada")));
    EXPECT_EQ(only(q({{"role", "textfield"}, {"name", "Name"}})).value("value", ""), "Ada");
    EXPECT_TRUE(done(act(q({{"role", "textfield"}, {"name", "Name"}}), "set_value", "")));
    EXPECT_TRUE(done(act(q({{"role", "button"}, {"name", "Open Dialog"}}), "press")));
    const json dialog = {{"app", app}, {"window", "Qt Test Dialog"}, {"role", "button"}, {"name", "Dismiss"}};
    ASSERT_TRUE(done(takeJson(zeblo_element_wait(dialog.dump().c_str()))));
    EXPECT_TRUE(done(act(dialog, "press")));
    EXPECT_TRUE(zeblo_wait_for_window(app, "Qt Test Dialog", 1, 5000));
#endif
}

TEST_F(Elements, ChromiumPageControlsByReference) {
    if (!desktopAvailable()) GTEST_SKIP() << "no display";
    if (std::system("command -v chromium >/dev/null") != 0) GTEST_SKIP() << "no chromium";
    const char* app = "Chromium";
    const char* win = "Zeblo Web Test";
    if (!zeblo_window_exists(app, win)) {
        ASSERT_TRUE(zeblo_launch_app(ZEBLO_CHROMIUM_PAGE));
    }
    ASSERT_TRUE(zeblo_wait_for_window(app, win, 0, 30000));
    const json in = {{"app", app}, {"window", win}};
    const auto q = [&](json more) {
        more.update(in);
        return more;
    };
    ASSERT_TRUE(done(takeJson(zeblo_element_wait(q({{"text", "pressed"}}).dump().c_str()))));
    const json button = takeJson(zeblo_element_find(q({{"role", "button"}, {"name", "Press me"}}).dump().c_str()));
    ASSERT_EQ(button["count"], 1) << button.dump();
    // Chromium names its actions but gives no localized names.
    EXPECT_EQ(button["matches"][0]["actions"][0], "press") << button.dump();
    EXPECT_TRUE(done(act(q({{"role", "button"}, {"name", "Press me"}}), "press")));
    EXPECT_TRUE(done(takeJson(zeblo_element_wait(q({{"name", "Pressed"}, {"role", "statictext"}}).dump().c_str()))));
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Remember me"}}), "check")["changed"], true);
    EXPECT_EQ(act(q({{"role", "checkbox"}, {"name", "Remember me"}}), "uncheck")["changed"], true);
    EXPECT_TRUE(done(act(q({{"name", "Your name"}}), "focus")));
    // Closing the tab by its key closes the window.
    EXPECT_TRUE(done(takeJson(zeblo_press_keys(app, "ctrl+w"))));
    EXPECT_TRUE(zeblo_wait_for_window(app, win, 1, 10000));
}

}  // namespace

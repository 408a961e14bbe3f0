// Application and window lookup, with the diagnostic lines of the window
// lookup, through the exports.
#include "window_fixture.h"

namespace zeblo::testing {
namespace {

using Lines = std::vector<std::string>;

const Lines kHead = {"getWindow: Getting windows for app with PID 2",
                     "getWindow: Calling AXUIElementCopyAttributeValue for kAXWindowsAttribute",
                     "getWindow: AXUIElementCopyAttributeValue result = 0",
                     "getWindow: Got windowsRef, casting to CFArray", "getWindow: Getting array count"};

Lines with(Lines a, const Lines& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class Lookup : public WindowTest {
protected:
    void SetUp() override {
        loadDesk({{"apps",
                   {app("Mail Sync", 1, {window("Sync")}),
                    app("Mail", 2, {window("Report A"), window("Final report")}),
                    app("Activity Monitor", 3, {window("CPU")}), app(nullptr, 4, {window("Nameless")}),
                    app("Editor", 5, {window("Untitled 3 \u2014 Edited")})}},
                  {"frontmost", 5}});
    }
    std::string firstLine(const char* appName, const char* windowName) {
        auto text = takeJson(zeblo_get_window_text(appName, windowName));
        return text.is_array() && !text.empty() ? text[0].get<std::string>() : text.dump();
    }
};

TEST_F(Lookup, ExactNameWinsThenLooseInWorkspaceOrder) {
    EXPECT_EQ(firstLine("Mail", "Report"), "[AXWindow Title] Report A");  // first window in list order
    EXPECT_EQ(logs(), with(kHead, {"getWindow: Found 2 windows", "getWindow: Searching for window named 'Report'",
                                   "getWindow: Found matching window 'Report A'"}));
    clearTrace();
    EXPECT_EQ(firstLine("mail", ""), "[AXWindow Title] Sync");  // loose: "Mail Sync" comes first
    EXPECT_EQ(firstLine("activity mon", ""), "[AXWindow Title] CPU");
    EXPECT_EQ(firstLine("   ", ""), "[AXWindow Title] Nameless");  // only the nameless app matches blanks
    EXPECT_EQ(firstLine("", "untitled3"), "[AXWindow Title] Untitled 3 \u2014 Edited");
    EXPECT_EQ(firstLine(nullptr, nullptr), "[AXWindow Title] Untitled 3 \u2014 Edited");

    EXPECT_FALSE(done(zeblo_click_button("Mailbox", "", "OK")));
    EXPECT_EQ(logs().back(), "zeblo_click_button error: Application 'Mailbox' not found. Check if the app is running.");
    EXPECT_EQ(takeJson(zeblo_get_window_text("Mail", "Draft"))["error"],
              "Window 'Draft' not found. Check if the window exists and is visible.");
    EXPECT_EQ(lastLogs(2), (Lines{"getWindow: Searching for window named 'Draft'",
                                  "getWindow: No matching window found for 'Draft'"}));
}

TEST_F(Lookup, FirstWindowLines) {
    EXPECT_TRUE(done(zeblo_window_exists("Mail", nullptr)));
    EXPECT_EQ(logs(), with(kHead, {"getWindow: Found 2 windows", "getWindow: Getting first window (focused)",
                                   "getWindow: Using Unmanaged to get window reference",
                                   "getWindow: Returning first window"}));
}

class LookupFailures : public WindowTest {};

TEST_F(LookupFailures, EachFailureIsAWindowNotFoundWithItsLines) {
    Json nil = app("Nil", 2, nullptr);
    Json text = app("Text", 3, "not a list");
    Json denied = app("Denied", 4, Json::array());
    denied["element"]["errors"] = {{"AXWindows", -25211}};
    Json gaps = app("Gaps", 5, {nullptr, {{"attrs", {{"AXTitle", 12}}}}, window("Doc")});
    loadDesk({{"apps", {app("Empty", 1, Json::array()), nil, text, denied, gaps}}});

    EXPECT_FALSE(done(zeblo_close_window("Empty", nullptr, -1)));
    EXPECT_EQ(lastLogs(3), (Lines{"getWindow: Found 0 windows", "getWindow: No windows found",
                                  "zeblo_close_window error: Window '<focused>' not found. Check if the window "
                                  "exists and is visible."}));
    for (const char* name : {"Nil", "Text"}) {
        EXPECT_FALSE(done(zeblo_click_button(name, "Doc", "OK")));
        EXPECT_EQ(lastLogs(2), (Lines{"getWindow: windowsRef is nil",
                                      "zeblo_click_button error: Window 'Doc' not found. Check if the window "
                                      "exists and is visible."}));
    }
    // A tree that cannot be read (no permission) is a missing window, not a missing app.
    EXPECT_FALSE(done(zeblo_click_button("Denied", "", "OK")));
    EXPECT_EQ(lastLogs(3), (Lines{"getWindow: AXUIElementCopyAttributeValue result = -25211",
                                  "getWindow: Failed to get windows attribute, result = -25211",
                                  "zeblo_click_button error: Window '<focused>' not found. Check if the window "
                                  "exists and is visible."}));
    // Null entries are skipped with a line; untitled entries silently.
    EXPECT_TRUE(done(zeblo_window_exists("Gaps", "doc")));
    EXPECT_EQ(lastLogs(3), (Lines{"getWindow: Searching for window named 'doc'",
                                  "getWindow: Window 0 pointer is nil, skipping",
                                  "getWindow: Found matching window 'Doc'"}));
    EXPECT_FALSE(done(zeblo_window_exists("Gaps", "")));
    EXPECT_EQ(logs().back(), "getWindow: First window pointer is nil");
    // No application in front.
    EXPECT_FALSE(done(zeblo_click_checkbox(nullptr, nullptr, "x")));
    EXPECT_EQ(logs().back(), "zeblo_click_checkbox error: No frontmost application");
    EXPECT_EQ(take(zeblo_get_window_buttons(nullptr, nullptr)), "{\"error\": \"No frontmost application\"}");
}

}  // namespace
}  // namespace zeblo::testing

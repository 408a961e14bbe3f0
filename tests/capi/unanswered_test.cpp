// Applications that do not answer, through the exports: a hung application
// gives every export its documented failure within the time of its reads, and
// an action whose reply is held back counts as performed, once.
#include <functional>
#include <string>
#include <vector>

#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using nlohmann::json;

constexpr double kHung = 1.0;  // seconds a call to the hung application waits

// "Busy" (frontmost) does not answer; the focused element is one of its own.
constexpr const char* kBusy = R"({"apps": [
  {"name": "Busy", "pid": 7, "hung": 1.0, "element": {"attrs": {"AXWindows": [{"id": "main", "attrs": {
    "AXTitle": "Main", "AXChildren": [{"id": "field", "attrs": {"AXRole": "AXTextField"}}]}}]}}},
  {"name": "Calm", "pid": 8}],
  "frontmost": 7, "systemWide": {"attrs": {"AXFocusedUIElement": {"ref": "field"}}}})";

std::string menuError(int n) {
    return "The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.MenuError error " + std::to_string(n) + ".)";
}
const std::string kNoWindow = "Window 'Main' not found. Check if the window exists and is visible.";

class Unanswered : public SimTest {
protected:
    std::string str(const char* result) { return take(result); }
    std::string flag(bool result) { return done(result) ? "true" : "false"; }
};

TEST_F(Unanswered, AHungApplicationFailsEveryExportInTheTimeOfItsReads) {
    const char* file[] = {"File"};
    const std::uint16_t keys[] = {0};
    struct Row {
        const char* name;
        std::function<std::string()> call;
        std::string answer;
        std::string failureLine;  // the call's last log line; "": no failure line at all
        int steps;                // reads of the hung application, one after another
        double pauses;            // the call's own pauses and time limit
    };
    const std::vector<Row> rows = {
        {"zeblo_get_app_menus", [&] { return str(zeblo_get_app_menus("Busy")); },
         "{\"error\": \"" + menuError(3) + "\"}", "", 1, 0},
        {"zeblo_menu_click", [&] { return flag(zeblo_menu_click("Busy", file, 1)); }, "false", menuError(3), 1, 0},
        {"zeblo_menu_item_exists", [&] { return flag(zeblo_menu_item_exists(nullptr, file, 1)); }, "false", "", 1, 0},
        {"zeblo_menu_item_enabled", [&] { return flag(zeblo_menu_item_enabled("Busy", file, 1)); }, "false", "", 1, 0},
        {"zeblo_send_keystroke", [&] { return flag(zeblo_send_keystroke("Busy", "a", 0)); }, "true", "", 0, 0.05},
        {"zeblo_send_global_keystroke", [&] { return flag(zeblo_send_global_keystroke(keys, 1, 0)); }, "true", "", 0,
         0},
        {"zeblo_type_text", [&] { return flag(zeblo_type_text("a", false)); }, "true", "", 0, 0.005},
        {"zeblo_paste_text", [&] { return flag(zeblo_paste_text("a")); }, "true", "", 0, 0.06},
        {"zeblo_paste_into_focused_field", [&] { return flag(zeblo_paste_into_focused_field("a", true)); }, "false",
         "Could not set value on focused element", 2, 0},
        {"zeblo_is_in_text_field", [&] { return flag(zeblo_is_in_text_field()); }, "false", "", 1, 0},
        {"zeblo_click_button", [&] { return flag(zeblo_click_button("Busy", "Main", "OK")); }, "false", kNoWindow, 1,
         0},
        {"zeblo_click_checkbox", [&] { return flag(zeblo_click_checkbox("Busy", "Main", "On")); }, "false", kNoWindow,
         1, 0},
        {"zeblo_set_checkbox_value", [&] { return flag(zeblo_set_checkbox_value("Busy", "", "On", 1)); }, "false",
         "Window '<focused>' not found. Check if the window exists and is visible.", 1, 0},
        {"zeblo_get_window_buttons", [&] { return str(zeblo_get_window_buttons("Busy", "Main")); },
         R"({"error": "Window 'Main' not found"})", "", 1, 0},
        {"zeblo_get_popup_menu_items", [&] { return str(zeblo_get_popup_menu_items("Busy", "Main", "Size")); },
         "{\"error\": \"" + kNoWindow + "\"}", "", 1, 0},
        {"zeblo_get_window_text", [&] { return str(zeblo_get_window_text("Busy", "Main")); },
         "{\"error\": \"" + kNoWindow + "\"}", "", 1, 0},
        {"zeblo_get_frontmost_info", [&] { return str(zeblo_get_frontmost_info()); }, R"({"app":"Busy","window":""})",
         "", 1, 0},
        {"zeblo_get_running_apps", [&] { return str(zeblo_get_running_apps()); }, R"(["Busy","Calm"])", "", 0, 0},
        {"zeblo_focus_app", [&] { return flag(zeblo_focus_app("Busy", "Main", true, false, 500)); }, "true", "", 1,
         0.55},
        {"zeblo_launch_app", [&] { return flag(zeblo_launch_app("Busy")); }, "true", "", 0, 0},
        {"zeblo_window_exists", [&] { return flag(zeblo_window_exists("Busy", "Main")); }, "false", "", 1, 0},
        {"zeblo_get_window_titles", [&] { return str(zeblo_get_window_titles("Busy")); }, "[]", "", 1, 0},
        {"zeblo_wait_for_window", [&] { return flag(zeblo_wait_for_window("Busy", "Main", 0, 300)); }, "false", "", 1,
         0.35},
        // No answer is not "gone": the wait runs out instead.
        {"zeblo_wait_for_window", [&] { return flag(zeblo_wait_for_window("Busy", "Main", 1, 300)); }, "false", "", 1,
         0.35},
        {"zeblo_wait_for_window", [&] { return flag(zeblo_wait_for_window("", "Main", 2, 300)); }, "false", "", 1,
         0.35},
        {"zeblo_close_window", [&] { return flag(zeblo_close_window("Busy", "Main", -1)); }, "false", kNoWindow, 1, 0},
        // Neither pressed nor taken for closed: looked up at the start and the end.
        {"zeblo_close_window", [&] { return flag(zeblo_close_window("Busy", "Main", 300)); }, "false",
         "Operation timed out", 2, 0.4},
    };
    for (const Row& row : rows) {
        load(kBusy);
        EXPECT_EQ(row.call(), row.answer) << row.name;
        const std::vector<std::string> lines = logs();
        const std::string prefix = std::string(row.name) + " error: ";
        if (row.failureLine.empty()) {
            for (const auto& line : lines) EXPECT_NE(line.rfind(prefix, 0), 0u) << line;
        } else {
            ASSERT_FALSE(lines.empty()) << row.name;
            EXPECT_EQ(lines.back(), prefix + row.failureLine);
        }
        EXPECT_GE(desk().clock(), row.steps * kHung) << row.name;
        EXPECT_LE(desk().clock(), row.steps * 2 * kHung + row.pauses + 1e-9) << row.name;
        EXPECT_TRUE(traceOf("action").empty() && traceOf("set").empty()) << row.name;
    }
}

TEST_F(Unanswered, TheNextCallAfterTheApplicationAnswersAgainWorks) {
    load(R"({"apps": [{"name": "Busy", "pid": 7, "hung": 1.0, "element": {"attrs": {"AXWindows": [
      {"attrs": {"AXTitle": "Main"}}]}}}],
      "timeline": [{"at": 1.5, "resumeApp": 7}, {"at": 3, "hangApp": {"pid": 7, "seconds": 0.5}}]})");
    EXPECT_EQ(take(zeblo_get_window_titles("Busy")), "[]");             // 0 → 1
    EXPECT_TRUE(done(zeblo_wait_for_window("Busy", "Main", 0, 2000)));  // 1 → 2 (no answer), then found at 2.05
    EXPECT_EQ(desk().clock(), 2.05);
    EXPECT_EQ(take(zeblo_get_window_text("Busy", "Main")), R"(["[Unknown Title] Main"])");
    // Hung again from 3: polls without an answer never show the window gone.
    EXPECT_FALSE(done(zeblo_wait_for_window("Busy", "Main", 1, 2000)));
    EXPECT_EQ(desk().clock(), 4.1);
}

// Ed's controls hold their replies back for 2 s, as a press that opens a modal
// dialog does; each would also answer a second action.
constexpr const char* kHeld = R"({"apps": [{"name": "Ed", "pid": 3, "element": {"attrs": {
  "AXMenuBar": {"attrs": {"AXChildren": [{"attrs": {"AXTitle": "File", "AXChildren": [
    {"id": "print", "attrs": {"AXTitle": "Print"}, "actions": {"AXPress": 0, "AXPick": 0}, "holdsReply": 2}]}}]}},
  "AXWindows": [{"attrs": {"AXTitle": "Main", "AXChildren": [
    {"id": "send", "attrs": {"AXRole": "AXButton", "AXTitle": "Send"}, "actions": {"AXPress": 0, "AXPick": 0},
     "holdsReply": 2},
    {"id": "wrap", "attrs": {"AXRole": "AXCheckBox", "AXTitle": "Wrap", "AXValue": 0}, "actions": {"AXPress": 0},
     "settable": ["AXValue"], "onPress": "toggle", "holdsReply": 2},
    {"id": "field", "attrs": {"AXRole": "AXTextField", "AXChildren": [
      {"id": "inner", "attrs": {"AXRole": "AXTextField"}, "settable": ["AXValue"]}]},
     "settable": ["AXValue"], "holdsReply": 2}],
    "AXCloseButton": {"id": "close", "actions": {"AXPress": 0}, "onPress": "close", "holdsReply": 2}}}]}}}],
  "frontmost": 3, "systemWide": {"attrs": {"AXFocusedUIElement": {"ref": "field"}}}})";

TEST_F(Unanswered, AnActionWithoutAReplyCountsAsPerformedOnce) {
    const char* print[] = {"File", "Print"};
    const std::vector<std::pair<std::function<bool()>, json>> rows = {
        {[&] { return zeblo_menu_click("Ed", print, 2); }, {{"action", "AXPress"}, {"element", "print"}}},
        {[] { return zeblo_click_button("Ed", "Main", "Send"); }, {{"action", "AXPress"}, {"element", "send"}}},
        {[] { return zeblo_click_checkbox("Ed", "Main", "Wrap"); }, {{"action", "AXPress"}, {"element", "wrap"}}},
        {[] { return zeblo_set_checkbox_value("Ed", "Main", "Wrap", 1); },
         {{"set", "AXValue"}, {"element", "wrap"}, {"value", 1}}},
        {[] { return zeblo_paste_into_focused_field("x", false); },
         {{"set", "AXValue"}, {"element", "field"}, {"value", "x"}}},
        {[] { return zeblo_close_window("Ed", "Main", -1); }, {{"action", "AXPress"}, {"element", "close"}}},
        {[] { return zeblo_close_window("Ed", "Main", 1000); }, {{"action", "AXPress"}, {"element", "close"}}},
    };
    for (const auto& [call, record] : rows) {
        load(kHeld);
        EXPECT_TRUE(done(call())) << record;
        json sent = json::array();
        for (const auto& r : desk().trace())
            if (r.contains("action") || r.contains("set")) sent.push_back(json(r));
        json expected = record;
        expected["result"] = -25204;
        EXPECT_EQ(sent, json::array({expected}));
        EXPECT_GE(desk().clock(), 2.0) << record;
        EXPECT_LE(desk().clock(), 2.1) << record;
    }
    // The press was delivered: the window went, as it would have with a reply.
    EXPECT_FALSE(done(zeblo_window_exists("Ed", "Main")));
}

}  // namespace
}  // namespace zeblo::testing

// Applications that do not answer, through the exports: a hung application
// gives every export its documented failure within the time of its reads, and
// an action whose reply is held back counts as performed, once.
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

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
std::string errorObject(const std::string& text) { return "{\"error\": \"" + text + "\"}"; }
const std::string kNoWindow = "Window 'Main' not found. Check if the window exists and is visible.";

// An export's answer as text; a string answer is freed.
std::string answer(bool result) { return result ? "true" : "false"; }
std::string answer(const char* result) {
    std::string text = result != nullptr ? result : "<null>";
    zeblo_free_string(result);
    return text;
}
// A row's export name and its call with `args`.
#define CALL(fn, args) #fn, [&] { return answer(fn args); }

class Unanswered : public SimTest {};

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
        {CALL(zeblo_get_app_menus, ("Busy")), errorObject(menuError(3)), "", 1, 0},
        {CALL(zeblo_menu_click, ("Busy", file, 1)), "false", menuError(3), 1, 0},
        {CALL(zeblo_menu_item_exists, (nullptr, file, 1)), "false", "", 1, 0},
        {CALL(zeblo_menu_item_enabled, ("Busy", file, 1)), "false", "", 1, 0},
        {CALL(zeblo_send_keystroke, ("Busy", "a", 0)), "true", "", 0, 0.05},
        {CALL(zeblo_send_global_keystroke, (keys, 1, 0)), "true", "", 0, 0},
        {CALL(zeblo_type_text, ("a", false)), "true", "", 0, 0.005},
        {CALL(zeblo_paste_text, ("a")), "true", "", 0, 0.06},
        {CALL(zeblo_paste_into_focused_field, ("a", true)), "false", "Could not set value on focused element", 2, 0},
        {CALL(zeblo_is_in_text_field, ()), "false", "", 1, 0},
        {CALL(zeblo_click_button, ("Busy", "Main", "OK")), "false", kNoWindow, 1, 0},
        {CALL(zeblo_click_checkbox, ("Busy", "Main", "On")), "false", kNoWindow, 1, 0},
        {CALL(zeblo_set_checkbox_value, ("Busy", "Main", "On", 1)), "false", kNoWindow, 1, 0},
        {CALL(zeblo_get_window_buttons, ("Busy", "Main")), R"({"error": "Window 'Main' not found"})", "", 1, 0},
        {CALL(zeblo_get_popup_menu_items, ("Busy", "Main", "Size")), errorObject(kNoWindow), "", 1, 0},
        {CALL(zeblo_get_window_text, ("Busy", "Main")), errorObject(kNoWindow), "", 1, 0},
        {CALL(zeblo_get_frontmost_info, ()), R"({"app":"Busy","window":""})", "", 1, 0},
        {CALL(zeblo_get_running_apps, ()), R"(["Busy","Calm"])", "", 0, 0},
        {CALL(zeblo_focus_app, ("Busy", "Main", true, false, 500)), "true", "", 1, 0.55},
        {CALL(zeblo_launch_app, ("Busy")), "true", "", 0, 0},
        {CALL(zeblo_window_exists, ("Busy", "Main")), "false", "", 1, 0},
        {CALL(zeblo_get_window_titles, ("Busy")), "[]", "", 1, 0},
        {CALL(zeblo_wait_for_window, ("Busy", "Main", 0, 300)), "false", "", 1, 0.35},
        {CALL(zeblo_wait_for_window, ("Busy", "Main", 1, 300)), "false", "", 1, 0.35},  // no answer is not gone
        {CALL(zeblo_wait_for_window, ("", "Main", 2, 300)), "false", "", 1, 0.35},
        {CALL(zeblo_close_window, ("Busy", "Main", -1)), "false", kNoWindow, 1, 0},
        // Neither pressed nor taken for closed: looked up at the start and the end.
        {CALL(zeblo_close_window, ("Busy", "Main", 300)), "false", "Operation timed out", 2, 0.4},
    };
    for (const Row& row : rows) {
        load(kBusy);
        EXPECT_EQ(row.call(), row.answer) << row.name;
        EXPECT_EQ(desk().liveHandles(), 0) << row.name;
        const std::vector<std::string> lines = logs();
        const std::string prefix = std::string(row.name) + " error: ";
        const auto failureLines = std::count_if(lines.begin(), lines.end(),
                                                [&](const std::string& line) { return line.rfind(prefix, 0) == 0; });
        EXPECT_EQ(failureLines, row.failureLine.empty() ? 0 : 1) << row.name;
        const std::string last = lines.empty() ? "" : lines.back();
        EXPECT_TRUE(row.failureLine.empty() || last == prefix + row.failureLine) << last;
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
    const std::vector<std::pair<std::function<bool()>, std::string>> rows = {
        {[&] { return zeblo_menu_click("Ed", print, 2); }, "print AXPress"},
        {[] { return zeblo_click_button("Ed", "Main", "Send"); }, "send AXPress"},
        {[] { return zeblo_click_checkbox("Ed", "Main", "Wrap"); }, "wrap AXPress"},
        {[] { return zeblo_set_checkbox_value("Ed", "Main", "Wrap", 1); }, "wrap AXValue"},
        {[] { return zeblo_paste_into_focused_field("x", false); }, "field AXValue"},  // no child tried
        {[] { return zeblo_close_window("Ed", "Main", -1); }, "close AXPress"},
        {[] { return zeblo_close_window("Ed", "Main", 1000); }, "close AXPress"},
    };
    for (const auto& [call, sent] : rows) {
        load(kHeld);
        EXPECT_TRUE(done(call())) << sent;
        std::vector<std::string> delivered;
        for (const auto& r : desk().trace()) {
            if (r.contains("action") || r.contains("set"))
                delivered.push_back(r["element"].get<std::string>() + " " + r.value("action", r.value("set", "")) +
                                    " " + r["result"].dump());
        }
        EXPECT_EQ(delivered, std::vector<std::string>{sent + " -25204"});
        EXPECT_GE(desk().clock(), 2.0) << sent;
        EXPECT_LE(desk().clock(), 2.1) << sent;
    }
    // The press was delivered: the window went, as it would have with a reply.
    EXPECT_FALSE(done(zeblo_window_exists("Ed", "Main")));
}

}  // namespace
}  // namespace zeblo::testing

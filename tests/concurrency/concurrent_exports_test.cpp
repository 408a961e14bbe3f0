// Several threads call every export at once against one simulated desktop.
// The desktop is built so that every answer is the same whatever runs beside
// it: actions change nothing, writes write the value already there, the
// application activated is the one in front, and every wait is answered by
// its first check. Each thread's results must equal the single-threaded ones;
// no call may crash, and (under the thread sanitizer) no data race may show.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "capi/export_table.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 50;  // each thread calls every export this many times

constexpr std::string_view kDesktop = R"({
  "apps": [
    { "name": "Quick Notes", "pid": 202, "element": { "attrs": {
        "AXRole": "AXApplication",
        "AXFocusedWindow": { "ref": "notes" },
        "AXWindows": [ { "ref": "notes" }, { "ref": "prefs" } ],
        "AXMenuBar": { "attrs": { "AXRole": "AXMenuBar", "AXChildren": [
          { "attrs": { "AXRole": "AXMenuBarItem", "AXTitle": "File", "AXChildren": [
            { "attrs": { "AXRole": "AXMenu", "AXTitle": "", "AXChildren": [
              { "attrs": { "AXRole": "AXMenuItem", "AXTitle": "Save", "AXEnabled": true,
                           "AXMenuItemCmdChar": "S", "AXMenuItemCmdModifiers": 0 },
                "actions": { "AXPress": 0 } },
              { "attrs": { "AXRole": "AXMenuItem", "AXTitle": "Revert", "AXEnabled": false },
                "actions": { "AXPress": -25200, "AXPick": -25200 } }
            ] } } ] } },
          { "attrs": { "AXRole": "AXMenuBarItem", "AXTitle": "\u00c9dition \"/\\", "AXChildren": [] } }
        ] } } } } },
    { "name": "Mail", "pid": 303, "element": { "attrs": { "AXRole": "AXApplication", "AXWindows": [] } } }
  ],
  "frontmost": 202,
  "systemWide": { "attrs": { "AXFocusedUIElement": { "id": "field",
      "attrs": { "AXRole": "AXTextField", "AXValue": "same" }, "settable": ["AXValue"] } } },
  "pasteboard": [ { "public.utf8-plain-text": "keep me", "com.example.rtf": { "base64": "AP8=" } } ],
  "launchable": { "Sketchpad": { "pid": 404 } },
  "_windows": null
})";

// The windows, spliced in below so the text above stays readable.
constexpr std::string_view kWindows = R"(
  { "id": "notes", "attrs": { "AXRole": "AXWindow", "AXTitle": "Notes \u2014 1",
      "AXCloseButton": { "attrs": { "AXRole": "AXButton" }, "actions": { "AXPress": 0 } },
      "AXChildren": [
        { "attrs": { "AXRole": "AXStaticText", "AXValue": "Saved %s \\n" } },
        { "attrs": { "AXRole": "AXButton", "AXTitle": "OK" }, "actions": { "AXPress": 0 } },
        { "attrs": { "AXRole": "AXButton", "AXTitle": "Cancel" }, "actions": { "AXPress": -25206, "AXPick": 0 } },
        { "attrs": { "AXRole": "AXCheckBox", "AXTitle": "Bold", "AXValue": 1 },
          "actions": { "AXPress": 0 }, "settable": ["AXValue"] },
        { "attrs": { "AXRole": "AXPopUpButton", "AXTitle": "Size",
            "AXMenu": { "attrs": { "AXRole": "AXMenu", "AXChildren": [
              { "attrs": { "AXRole": "AXMenuItem", "AXTitle": "Small" } },
              { "attrs": { "AXRole": "AXMenuItem", "AXTitle": "Large" } } ] } } },
          "actions": { "AXPress": 0 } }
      ] } },
  { "id": "prefs", "attrs": { "AXRole": "AXWindow", "AXTitle": "Preferences", "AXChildren": [] } }
)";

std::string desktopJson() {
    std::string text(kDesktop);
    // The windows are built once, inside the application's window list
    // (references point at them); the placeholder key is dropped.
    const std::string anchor = "\"AXWindows\": [ { \"ref\": \"notes\" }, { \"ref\": \"prefs\" } ]";
    text.replace(text.find(anchor), anchor.size(), "\"AXWindows\": [" + std::string(kWindows) + "]");
    text.replace(text.find(",\n  \"_windows\": null"), std::string(",\n  \"_windows\": null").size(), "");
    return text;
}

// One export call with fixed arguments: its name (the export's without the
// prefix, then what the call tries), what its result begins with when it
// runs alone, and the call, its result as text.
struct Call {
    std::string name;
    std::string begins;
    std::function<std::string()> run;
};

std::string owned(const char* s) {
    std::string out = s != nullptr ? s : "<null>";
    zeblo_free_string(s);
    return out;
}
std::string flag(bool b) { return b ? "true" : "false"; }

std::vector<Call> everyExport() {
    static const char* const kPath[] = {"File", nullptr, "Save"};
    static const char* const kDisabled[] = {"File", "Revert"};
    static const std::uint16_t kCodes[] = {56, 0};
    return {
        {"get_app_menus", "{\n", [] { return owned(zeblo_get_app_menus("Quick Notes")); }},
        {"menu_click", "true", [] { return flag(zeblo_menu_click(nullptr, kPath, 3)); }},
        {"menu_click refused", "false", [] { return flag(zeblo_menu_click("Quick Notes", kDisabled, 2)); }},
        {"menu_item_exists", "true", [] { return flag(zeblo_menu_item_exists("Quick Notes", kPath, 3)); }},
        {"menu_item_enabled", "false", [] { return flag(zeblo_menu_item_enabled("Quick Notes", kDisabled, 2)); }},
        {"send_keystroke", "true", [] { return flag(zeblo_send_keystroke("", "s", 8)); }},
        {"send_keystroke bad key", "false", [] { return flag(zeblo_send_keystroke(nullptr, "\xff", 0)); }},
        {"send_global_keystroke", "true", [] { return flag(zeblo_send_global_keystroke(kCodes, 2, 0x120000)); }},
        {"type_text", "true", [] { return flag(zeblo_type_text("ab\n", true)); }},
        {"type_text unsupported", "false", [] { return flag(zeblo_type_text("x\xc3\xa9", false)); }},
        {"paste_text", "true", [] { return flag(zeblo_paste_text("pasted \xe2\x9c\x93")); }},
        {"paste_into_focused_field", "true", [] { return flag(zeblo_paste_into_focused_field("same", false)); }},
        {"click_button", "true", [] { return flag(zeblo_click_button("quick", "notes", "Cancel")); }},
        {"click_checkbox", "true", [] { return flag(zeblo_click_checkbox(nullptr, nullptr, "bold")); }},
        {"get_window_buttons", R"(["OK","Cancel"])", [] { return owned(zeblo_get_window_buttons("Quick Notes", "")); }},
        {"set_checkbox_value", "true", [] { return flag(zeblo_set_checkbox_value("", "Notes", "Bold", 1)); }},
        {"get_popup_menu_items", R"(["Small","Large"])",
         [] { return owned(zeblo_get_popup_menu_items("", "", "Size")); }},
        {"get_window_text", "[\"", [] { return owned(zeblo_get_window_text("Quick Notes", "Notes")); }},
        {"get_window_text missing", R"({"error":)",
         [] { return owned(zeblo_get_window_text("Quick Notes", "Nowhere")); }},
        {"get_frontmost_info", R"({"app":"Quick Notes",)", [] { return owned(zeblo_get_frontmost_info()); }},
        {"get_running_apps", R"(["Quick Notes","Mail"])", [] { return owned(zeblo_get_running_apps()); }},
        {"focus_app", "true", [] { return flag(zeblo_focus_app("Quick Notes", "Notes", true, false, 200)); }},
        {"focus_app unknown", "false", [] { return flag(zeblo_focus_app("Nowhere", nullptr, true, false, 0)); }},
        {"launch_app", "true", [] { return flag(zeblo_launch_app("Quick Notes")); }},
        {"is_in_text_field", "true", [] { return flag(zeblo_is_in_text_field()); }},
        {"window_exists", "true", [] { return flag(zeblo_window_exists("Quick Notes", "Preferences")); }},
        {"get_window_titles", "[\"Notes", [] { return owned(zeblo_get_window_titles("quick notes")); }},
        // The simulated clock is shared: every other thread's pauses advance
        // it, so a short limit could run out before the first check. The
        // longest limit keeps the answer the one of that first check.
        {"wait_for_window", "true", [] { return flag(zeblo_wait_for_window("Quick Notes", "Notes", 2, INT32_MAX)); }},
        {"wait_for_window bad condition", "false", [] { return flag(zeblo_wait_for_window("", "", 7, 300)); }},
        {"close_window", "true", [] { return flag(zeblo_close_window("Quick Notes", "Notes", -1)); }},
        {"free_string", "done",
         [] {
             zeblo_free_string(nullptr);
             return std::string("done");
         }},
    };
}

class Concurrency : public SimTest {};

TEST_F(Concurrency, EveryExportAtOnceGivesTheSingleThreadedResults) {
    load(desktopJson());
    desk().setRecording(false);  // the trace would grow with every call
    const auto calls = everyExport();

    // Alone, every call answers as the desktop was built for (so that the
    // comparison below means something), and every export is called.
    std::vector<std::string> expected;
    std::set<std::string> called;
    for (const Call& call : calls) {
        expected.push_back(call.run());
        EXPECT_TRUE(expected.back().starts_with(call.begins)) << call.name << ": " << expected.back();
        called.insert("zeblo_" + call.name.substr(0, call.name.find(' ')));
    }
    ASSERT_EQ(desk().liveHandles(), 0);
    for (const capi::Export& row : capi::exportTable()) EXPECT_EQ(called.count(std::string(row.name)), 1u) << row.name;

    // Every thread walks the list from its own starting point, so different
    // exports overlap; mismatches are collected, not asserted, off the main thread.
    std::vector<std::vector<std::string>> mismatches(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds; ++round) {
                for (std::size_t k = 0; k < calls.size(); ++k) {
                    const std::size_t i = (k + static_cast<std::size_t>(t) * 7 + round) % calls.size();
                    std::string got = calls[i].run();
                    if (got != expected[i]) mismatches[t].push_back(calls[i].name + ": " + got);
                }
            }
        });
    }
    for (auto& thread : threads) thread.join();

    for (int t = 0; t < kThreads; ++t) {
        EXPECT_TRUE(mismatches[t].empty()) << "thread " << t << ", first of " << mismatches[t].size() << ": "
                                           << (mismatches[t].empty() ? "" : mismatches[t].front());
    }
    EXPECT_EQ(desk().liveHandles(), 0);
    // (Pastes running at the same time meet in the one pasteboard, and the
    // library does not order them, so its final contents are not compared.)
}

}  // namespace
}  // namespace zeblo::testing

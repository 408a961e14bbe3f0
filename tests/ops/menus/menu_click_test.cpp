// zeblo_menu_click, zeblo_menu_item_exists and zeblo_menu_item_enabled on the
// simulated desktop: path navigation with its container rule, exact title
// matching, press then pick, and the failure tables with their log lines.
#include "support/sim_fixture.h"

#include <string>
#include <vector>

namespace zeblo::testing {
namespace {

using nlohmann::json;
using Lines = std::vector<std::string>;

const std::string kContainerLine = "Skipping container layer, searching in its children";

std::string clickError(int code) {
    return "zeblo_menu_click error: The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.MenuError error " +
           std::to_string(code) + ".)";
}

constexpr const char* kDesktop = R"J({"apps": [
  {"name": "Ed", "pid": 10, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [
    {"id": "file", "attrs": {"AXTitle": "File", "AXEnabled": true, "AXChildren": [{"attrs": {"AXTitle": "", "AXChildren": [
      {"id": "save", "attrs": {"AXTitle": "Save", "AXEnabled": true}, "actions": {"AXPress": 0}},
      {"id": "save-twin", "attrs": {"AXTitle": "Save", "AXEnabled": false}, "actions": {"AXPress": 0}},
      {"id": "print", "attrs": {"AXTitle": "Print\u2026", "AXEnabled": false}, "actions": {"AXPress": -25200, "AXPick": 0}},
      {"id": "stuck", "attrs": {"AXTitle": "Stuck", "AXEnabled": "yes"},
       "actions": {"AXPress": -25200, "AXPick": -25205}},
      {"id": "mute", "attrs": {"AXTitle": "Mute"}, "actions": {"AXPress": -25200}, "actionNamesError": -25204},
      {"id": "cafe", "attrs": {"AXTitle": "Caf\u00e9"}, "errors": {"AXEnabled": -25204}, "actions": {"AXPress": 0}},
      {"attrs": {"AXTitle": 42}},
      {"id": "recent", "attrs": {"AXTitle": "Recent", "AXChildren": [
        {"id": "doc", "attrs": {"AXTitle": "Doc", "AXEnabled": true}, "actions": {"AXPick": 0}}]}}
    ]}}]}},
    {"id": "view", "attrs": {"AXTitle": "View", "AXChildren": [
      {"id": "lonely", "attrs": {"AXTitle": "Lonely"}, "actions": {"AXPress": 0}}]}},
    {"attrs": {"AXTitle": "Sealed", "AXChildren": [
      {"attrs": {"AXTitle": "(no title)"}, "errors": {"AXChildren": -25204}}]}},
    {"attrs": {"AXTitle": "Hollow", "AXChildren": [{"attrs": {"AXTitle": "", "AXChildren": []}}]}}
  ]}}}}},
  {"name": "Ed", "pid": 11, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [
    {"id": "other-file", "attrs": {"AXTitle": "File"}, "actions": {"AXPress": 0}}]}}}}},
  {"name": "NoBar", "pid": 12, "element": {"attrs": {}}},
  {"name": "Single", "pid": 13, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [
    {"id": "only-menu", "attrs": {"AXTitle": "Only", "AXEnabled": true}, "actions": {"AXPress": 0}}]}}}}}
], "frontmost": 10})J";

class MenuClickTest : public SimTest {
protected:
    void SetUp() override { load(kDesktop); }

    // The three exports on one path; each call must leave no handle alive.
    bool click(const char* app, std::vector<const char*> path) {
        return done(zeblo_menu_click(app, path.data(), static_cast<std::int32_t>(path.size())));
    }
    bool exists(const char* app, std::vector<const char*> path) {
        return done(zeblo_menu_item_exists(app, path.data(), static_cast<std::int32_t>(path.size())));
    }
    bool enabled(const char* app, std::vector<const char*> path) {
        return done(zeblo_menu_item_enabled(app, path.data(), static_cast<std::int32_t>(path.size())));
    }
    // The actions performed since the trace was last cleared, as "element
    // action result"; clears the trace (log lines included).
    Lines actions() {
        Lines out;
        for (const auto& a : traceOf("action")) {
            out.push_back(a["element"].get<std::string>() + " " + a["action"].get<std::string>() + " " +
                          std::to_string(a["result"].get<int>()));
        }
        clearTrace();
        return out;
    }
    Lines takeLogs() {
        Lines out = logs();
        clearTrace();
        return out;
    }
};

TEST_F(MenuClickTest, PressThroughTheContainerLayer) {
    EXPECT_TRUE(click("Ed", {"File", "Save"}));
    EXPECT_EQ(takeLogs(), Lines{kContainerLine});  // clears the actions too
    EXPECT_TRUE(click(nullptr, {"File", "Save"}));  // the frontmost application
    EXPECT_EQ(actions(), Lines{"save AXPress 0"});  // the first of two equal titles

    // A single titled child is searched directly: no container line.
    EXPECT_TRUE(click("Ed", {"View", "Lonely"}));
    EXPECT_TRUE(logs().empty());
    EXPECT_EQ(actions(), Lines{"lonely AXPress 0"});

    // Below File's container, Recent's single child is titled and found as is;
    // it refuses the press (unlisted action) and accepts the pick.
    EXPECT_TRUE(click("Ed", {"File", "Recent", "Doc"}));
    EXPECT_EQ(logs(), Lines{kContainerLine});
    EXPECT_EQ(actions(), (Lines{"doc AXPress -25206", "doc AXPick 0"}));

    // A menu bar with a single titled item; a disabled item is pressed like any other.
    EXPECT_TRUE(click("Single", {"Only"}));
    EXPECT_TRUE(click("Ed", {"File", "Print\xe2\x80\xa6"}));
    EXPECT_EQ(logs(), Lines{kContainerLine});
    EXPECT_EQ(actions(), (Lines{"only-menu AXPress 0", "print AXPress -25200", "print AXPick 0"}));
}

TEST_F(MenuClickTest, NullEntriesAreSkipped) {
    const char* path[] = {nullptr, "File", nullptr, "Save", nullptr};
    EXPECT_TRUE(done(zeblo_menu_click("Ed", path, 5)));
    EXPECT_EQ(actions(), Lines{"save AXPress 0"});
    EXPECT_TRUE(done(zeblo_menu_item_exists("Ed", path, 5)));
    EXPECT_TRUE(done(zeblo_menu_item_enabled("Ed", path, 5)));
    // Only the first `count` entries are read.
    EXPECT_TRUE(done(zeblo_menu_item_exists("Ed", path, 2)));
}

TEST_F(MenuClickTest, TitlesMatchExactlyUpToCanonicalEquivalence) {
    EXPECT_TRUE(exists("Ed", {"File", "Cafe\xcc\x81"}));  // decomposed é
    for (const char* title : {"save", "Save ", " Save", "Sav", "Print...", "Print", "42", ""}) {
        EXPECT_FALSE(exists("Ed", {"File", title})) << title;
    }
    EXPECT_FALSE(exists("Ed", {"file", "Save"}));
    // A name must equal the localized name exactly; the first of equal names wins.
    EXPECT_FALSE(exists("ed", {"File"}));
    EXPECT_FALSE(exists("Ed ", {"File"}));
    // pid 10's File (no actions at all), not pid 11's, which would accept.
    clearTrace();
    EXPECT_FALSE(click("Ed", {"File"}));
    EXPECT_EQ(logs(), (Lines{"Menu item execute failed. Available actions (0):", clickError(5)}));
    EXPECT_EQ(actions(), (Lines{"file AXPress -25206", "file AXPick -25206"}));
}

TEST_F(MenuClickTest, NavigationAndSnapshotTreatAnUnreadableContainerDifferently) {
    // The snapshot lists the single untitled child whose children cannot be
    // read; navigation skips it as a container and finds nothing.
    const json snapshot = takeJson(zeblo_get_app_menus("Ed"));
    EXPECT_EQ(snapshot["menus"][2]["children"][0]["title"], "(no title)");
    EXPECT_EQ(snapshot["menus"][2]["children"][0]["path"], json::array({"Sealed"}));
    EXPECT_FALSE(snapshot["menus"][3].contains("children"));
    clearTrace();

    EXPECT_FALSE(exists("Ed", {"Sealed", "(no title)"}));
    EXPECT_FALSE(exists("Ed", {"Hollow", ""}));
    EXPECT_FALSE(click("Ed", {"Sealed", "(no title)"}));
    EXPECT_EQ(takeLogs(), (Lines{kContainerLine, kContainerLine, kContainerLine, clickError(1)}));
}

TEST_F(MenuClickTest, ExistsAnswersForAnyElementOnThePath) {
    EXPECT_TRUE(exists("Ed", {"File"}));
    EXPECT_TRUE(exists("Ed", {"File", "Recent"}));
    EXPECT_TRUE(exists("Ed", {"File", "Recent", "Doc"}));
    EXPECT_TRUE(exists("Ed", {"File", "Print\xe2\x80\xa6"}));  // disabled
    EXPECT_FALSE(exists("Ed", {"File", "Recent", "Doc", "Deeper"}));
    EXPECT_TRUE(actions().empty());
}

TEST_F(MenuClickTest, EnabledFollowsTheItemsOwnAnswer) {
    EXPECT_TRUE(enabled("Ed", {"File"}));
    EXPECT_TRUE(enabled("Ed", {"File", "Save"}));
    EXPECT_FALSE(enabled("Ed", {"File", "Print\xe2\x80\xa6"}));   // false
    EXPECT_FALSE(enabled("Ed", {"File", "Stuck"}));               // not a boolean
    EXPECT_FALSE(enabled("Ed", {"File", "Cafe\xcc\x81"}));        // read fails
    EXPECT_FALSE(enabled("Ed", {"File", "Mute"}));                // not reported
    EXPECT_FALSE(enabled("Ed", {"View"}));                        // not reported
    EXPECT_FALSE(enabled("Ed", {"File", "Nothing"}));             // not found
    EXPECT_TRUE(actions().empty());
    for (const auto& line : logs()) EXPECT_EQ(line, kContainerLine);
}

TEST_F(MenuClickTest, RefusedActionsListTheAvailableOnes) {
    EXPECT_FALSE(click("Ed", {"File", "Stuck"}));
    const Lines lines = logs();
    EXPECT_EQ(lines, (Lines{kContainerLine, "Menu item execute failed. Available actions (2):", "  AXPress",
                            "  AXPick", clickError(5)}));
    EXPECT_EQ(actions(), (Lines{"stuck AXPress -25200", "stuck AXPick -25205"}));
    EXPECT_TRUE(exists("Ed", {"File", "Stuck"}));
    clearTrace();

    // Unreadable action names: nothing listed, the error line still written.
    EXPECT_FALSE(click("Ed", {"File", "Mute"}));
    EXPECT_EQ(takeLogs(), (Lines{kContainerLine, clickError(5)}));
}

TEST_F(MenuClickTest, FailureTable) {
    struct Row {
        const char* app;
        std::vector<const char*> path;
        Lines logLines;
    };
    const std::vector<Row> rows = {
        {"Ed", {}, {clickError(4)}},
        {"Nobody", {}, {clickError(4)}},  // the empty path is checked first
        {"Ed", {nullptr, nullptr}, {clickError(4)}},
        {"ed", {"File"}, {clickError(0)}},
        {"NoBar", {"File"}, {clickError(3)}},
        {"Ed", {"Edit"}, {clickError(1)}},
        {"Ed", {"File", "Open"}, {kContainerLine, clickError(1)}},
        {"Ed", {"View", "Lonely", "Below"}, {clickError(1)}},
    };
    for (const Row& row : rows) {
        const auto count = static_cast<std::int32_t>(row.path.size());
        EXPECT_FALSE(done(zeblo_menu_click(row.app, row.path.data(), count)));
        EXPECT_EQ(takeLogs(), row.logLines) << row.app;
        EXPECT_FALSE(done(zeblo_menu_item_exists(row.app, row.path.data(), count)));
        EXPECT_FALSE(done(zeblo_menu_item_enabled(row.app, row.path.data(), count)));
        for (const auto& line : takeLogs()) EXPECT_EQ(line, kContainerLine);
    }
    EXPECT_FALSE(done(zeblo_menu_click(nullptr, nullptr, 0)));
    EXPECT_EQ(takeLogs(), Lines{clickError(4)});
    EXPECT_FALSE(done(zeblo_menu_click("Ed", nullptr, -1)));
    EXPECT_EQ(takeLogs(), Lines{clickError(4)});

    desk().setFrontmost(std::nullopt);
    EXPECT_FALSE(click(nullptr, {"File"}));
    EXPECT_FALSE(click("", {"File"}));
    EXPECT_EQ(takeLogs(), (Lines{clickError(2), clickError(2)}));
    EXPECT_FALSE(exists(nullptr, {"File"}));
    EXPECT_FALSE(enabled(nullptr, {"File"}));
    EXPECT_TRUE(actions().empty());
}

}  // namespace
}  // namespace zeblo::testing

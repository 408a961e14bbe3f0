// zeblo_get_app_menus on the simulated desktop: the record defaults, the
// container-layer rule of the snapshot, paths, the two layouts, escaping and
// the failure texts.
#include "support/sim_fixture.h"

#include <string>
#include <vector>

namespace zeblo::testing {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

const std::string kFailedPrefix = "The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.MenuError error ";

std::string errorText(int code) {
    return "{\"error\": \"" + kFailedPrefix + std::to_string(code) + ".)\"}";
}

// One application "Ed" (pid 10, frontmost) whose menu bar holds `items`.
std::string desktopWithMenuBar(const std::string& items) {
    return R"J({"apps": [{"name": "Ed", "pid": 10, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [)J" +
           items + R"J(]}}}}}], "frontmost": 10})J";
}

class MenuSnapshotTest : public SimTest {};

TEST_F(MenuSnapshotTest, DefaultsContainersAndPaths) {
    load(desktopWithMenuBar(R"J(
      {"attrs": {"AXTitle": "File", "AXChildren": [{"attrs": {"AXTitle": "", "AXChildren": [
        {"attrs": {"AXTitle": "Save", "AXEnabled": true, "AXMenuItemCmdChar": "S", "AXMenuItemCmdModifiers": 0}},
        {"attrs": {"AXTitle": "Gone", "AXEnabled": false, "AXMenuItemMarkChar": "\u2713",
                   "AXMenuItemCmdChar": "", "AXMenuItemCmdModifiers": -3}},
        {"attrs": {"AXEnabled": 1, "AXMenuItemMarkChar": "", "AXMenuItemCmdChar": 5, "AXMenuItemCmdModifiers": 1.5}},
        {"attrs": {"AXTitle": "", "AXEnabled": null, "AXMenuItemMarkChar": 1}},
        {"attrs": {"AXTitle": 7, "AXChildren": [{"attrs": {"AXTitle": "Deep"}}, {"attrs": {"AXTitle": "Er"}}]},
         "errors": {"AXEnabled": -25204, "AXMenuItemMarkChar": -25204, "AXMenuItemCmdChar": -25204}}
      ]}}]}},
      {"attrs": {"AXTitle": "Titled", "AXChildren": [{"attrs": {"AXTitle": "Only"}}]}},
      {"attrs": {"AXTitle": "Hollow", "AXChildren": [{"attrs": {"AXTitle": "", "AXChildren": []}}]}},
      {"attrs": {"AXTitle": "Sealed", "AXChildren": [{"attrs": {"AXTitle": "(no title)"}, "errors": {"AXChildren": -25204}}]}},
      {"attrs": {"AXTitle": "Blank", "AXChildren": [{"attrs": {"AXTitle": 3, "AXChildren": null}}]}},
      {"attrs": {"AXTitle": "Nested", "AXChildren": [{"attrs": {"AXTitle": 2.5, "AXChildren": [
        {"attrs": {"AXTitle": "Find", "AXChildren": [{"attrs": {"AXChildren": [{"attrs": {"AXTitle": "Next"}}]}}]}}]}}]}},
      {"attrs": {"AXTitle": "Twins", "AXChildren": [{"attrs": {"AXTitle": ""}}, {"attrs": {"AXTitle": ""}}]}},
      {"attrs": {"AXTitle": "Empty", "AXChildren": []}},
      {"attrs": {"AXTitle": "Odd", "AXChildren": "not a list"}}
    )J"));
    const json menus = takeJson(zeblo_get_app_menus("Ed"));
    const json expected = json::parse(R"J({"app": "Ed", "menus": [
      {"title": "File", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "Save", "path": ["File"], "enabled": true, "checked": false, "cmdChar": "S", "cmdModifiers": 0},
        {"title": "Gone", "path": ["File"], "enabled": false, "checked": true, "cmdChar": "", "cmdModifiers": -3},
        {"title": "(no title)", "path": ["File"], "enabled": true, "checked": false},
        {"title": "", "path": ["File"], "enabled": true, "checked": false},
        {"title": "(no title)", "path": ["File"], "enabled": true, "checked": false, "children": [
          {"title": "Deep", "path": ["File", "(no title)"], "enabled": true, "checked": false},
          {"title": "Er", "path": ["File", "(no title)"], "enabled": true, "checked": false}]}]},
      {"title": "Titled", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "Only", "path": ["Titled"], "enabled": true, "checked": false}]},
      {"title": "Hollow", "path": [], "enabled": true, "checked": false},
      {"title": "Sealed", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "(no title)", "path": ["Sealed"], "enabled": true, "checked": false}]},
      {"title": "Blank", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "(no title)", "path": ["Blank"], "enabled": true, "checked": false}]},
      {"title": "Nested", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "Find", "path": ["Nested"], "enabled": true, "checked": false, "children": [
          {"title": "Next", "path": ["Nested", "Find"], "enabled": true, "checked": false}]}]},
      {"title": "Twins", "path": [], "enabled": true, "checked": false, "children": [
        {"title": "", "path": ["Twins"], "enabled": true, "checked": false},
        {"title": "", "path": ["Twins"], "enabled": true, "checked": false}]},
      {"title": "Empty", "path": [], "enabled": true, "checked": false},
      {"title": "Odd", "path": [], "enabled": true, "checked": false}]})J");
    EXPECT_EQ(menus, expected) << menus.dump(2);
    EXPECT_TRUE(logs().empty());
}

TEST_F(MenuSnapshotTest, EntriesThatLeadBackUpAreLeftOut) {
    // Each mark is an entry naming the menu bar, the item itself, a container
    // or an ancestor; without them the tree is finite (Save is shared).
    const std::vector<std::pair<std::string, std::string>> loops = {
        {"@1", R"({"ref": "bar"},)"},  {"@2", R"({"ref": "box"},)"}, {"@3", R"(, {"ref": "file"})"},
        {"@4", R"({"ref": "self"},)"}, {"@5", R"({"ref": "lone"})"}, {"@6", R"(, {"ref": "bar"})"}};
    auto desktop = [&](bool looping) {
        std::string text = R"J({"apps": [{"name": "Ed", "pid": 1, "element": {"attrs": {"AXMenuBar": {"id": "bar",
          "attrs": {"AXChildren": [
            {"id": "file", "attrs": {"AXTitle": "File", "AXChildren": [@1 {"id": "box", "attrs": {"AXTitle": "",
              "AXChildren": [{"id": "save", "attrs": {"AXTitle": "Save"}}, @2
                {"attrs": {"AXTitle": "Recent", "AXChildren": [{"attrs": {"AXTitle": "Doc"}} @3]}}]}}]}},
            {"id": "self", "attrs": {"AXTitle": "Self", "AXChildren": [@4 {"ref": "save"},
              {"id": "lone", "attrs": {"AXTitle": "Lone", "AXChildren": [@5]}}]}} @6]}}}}}]})J";
        for (const auto& [mark, entry] : loops) text.replace(text.find(mark), mark.size(), looping ? entry : "");
        return text;
    };
    load(desktop(false));
    const json finite = takeJson(zeblo_get_app_menus("Ed"));
    ASSERT_EQ(finite["menus"].size(), 2u);
    EXPECT_EQ(finite["menus"][1]["children"][0]["title"], "Save");
    EXPECT_EQ(finite["menus"][0]["children"][1]["children"][0]["path"], json::parse(R"(["File", "Recent"])"));
    load(desktop(true));
    EXPECT_EQ(takeJson(zeblo_get_app_menus("Ed")), finite);
}

// Every object's keys, in the order written, for every object of a parsed tree.
void collectKeyOrders(const ordered_json& value, std::vector<std::vector<std::string>>& out) {
    if (value.is_object()) {
        std::vector<std::string> keys;
        for (const auto& [k, v] : value.items()) keys.push_back(k);
        out.push_back(keys);
    }
    if (value.is_structured()) {
        for (const auto& child : value) collectKeyOrders(child, out);
    }
}

TEST_F(MenuSnapshotTest, PrettyLayoutAndKeyOrder) {
    load(desktopWithMenuBar(R"J({"attrs": {"AXTitle": "View", "AXChildren": [{"attrs": {"AXTitle": "", "AXChildren": [
        {"attrs": {"AXTitle": "Zoom", "AXMenuItemCmdChar": "+", "AXMenuItemCmdModifiers": 8}}]}}]}})J"));
    const std::string text = take(zeblo_get_app_menus("Ed"));
    EXPECT_EQ(text, R"J({
  "app" : "Ed",
  "menus" : [
    {
      "title" : "View",
      "path" : [],
      "enabled" : true,
      "checked" : false,
      "children" : [
        {
          "title" : "Zoom",
          "path" : [
            "View"
          ],
          "enabled" : true,
          "checked" : false,
          "cmdChar" : "+",
          "cmdModifiers" : 8
        }
      ]
    }
  ]
})J");
    std::vector<std::vector<std::string>> orders;
    collectKeyOrders(ordered_json::parse(text), orders);
    const std::vector<std::vector<std::string>> expected = {
        {"app", "menus"},
        {"title", "path", "enabled", "checked", "children"},
        {"title", "path", "enabled", "checked", "cmdChar", "cmdModifiers"}};
    EXPECT_EQ(orders, expected);
}

TEST_F(MenuSnapshotTest, EmptyAndMissingItemListsHaveDifferentLayouts) {
    load(R"J({"apps": [
        {"name": "Listless", "pid": 1, "element": {"attrs": {"AXMenuBar": {"attrs": {}}}}},
        {"name": "Null", "pid": 2, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": null}}}}},
        {"name": "Failing", "pid": 3, "element": {"attrs": {"AXMenuBar": {"errors": {"AXChildren": -25204}}}}},
        {"name": "Strange", "pid": 4, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": 12}}}}},
        {"name": "Empty", "pid": 5, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": []}}}}}]})J");
    for (const char* name : {"Listless", "Null", "Failing", "Strange"}) {
        EXPECT_EQ(take(zeblo_get_app_menus(name)), "{\"app\": \"" + std::string(name) + "\", \"menus\": []}");
    }
    EXPECT_EQ(take(zeblo_get_app_menus("Empty")), "{\n  \"app\" : \"Empty\",\n  \"menus\" : []\n}");
}

TEST_F(MenuSnapshotTest, FrontmostApplicationAndItsName) {
    load(R"J({"apps": [
        {"name": "Ed", "pid": 10, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [{"attrs": {"AXTitle": "A"}}]}}}}},
        {"name": null, "pid": 11, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": []}}}}},
        {"pid": 12, "element": {"attrs": {"AXMenuBar": {"attrs": {}}}}}], "frontmost": 10})J");
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        const json snapshot = takeJson(zeblo_get_app_menus(name));
        EXPECT_EQ(snapshot["app"], "Ed");
        EXPECT_EQ(snapshot["menus"][0]["title"], "A");
    }
    desk().setFrontmost(11);
    EXPECT_EQ(takeJson(zeblo_get_app_menus(nullptr)), json::parse(R"J({"app": "Unknown", "menus": []})J"));
    desk().setFrontmost(12);
    EXPECT_EQ(take(zeblo_get_app_menus("")), R"J({"app": "Unknown", "menus": []})J");
}

TEST_F(MenuSnapshotTest, FailureTexts) {
    load(R"J({"apps": [
        {"name": "Ed", "pid": 10, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": []}}}}},
        {"name": "NoBar", "pid": 11, "element": {"attrs": {}}},
        {"name": "NullBar", "pid": 12, "element": {"attrs": {"AXMenuBar": null}}},
        {"name": "BadBar", "pid": 13, "element": {"errors": {"AXMenuBar": -25211}}},
        {"name": "TextBar", "pid": 14, "element": {"attrs": {"AXMenuBar": "menu bar"}}},
        {"name": "ListBar", "pid": 15, "element": {"attrs": {"AXMenuBar": [{"attrs": {}}]}}}]})J");
    EXPECT_EQ(take(zeblo_get_app_menus(nullptr)), errorText(2));  // no frontmost application
    EXPECT_EQ(take(zeblo_get_app_menus("ed")), errorText(0));
    EXPECT_EQ(take(zeblo_get_app_menus("Ed ")), errorText(0));
    EXPECT_EQ(take(zeblo_get_app_menus("E")), errorText(0));
    for (const char* name : {"NoBar", "NullBar", "BadBar", "TextBar", "ListBar"}) {
        const std::string text = take(zeblo_get_app_menus(name));
        EXPECT_EQ(text, errorText(3)) << name;
        const json parsed = json::parse(text);
        EXPECT_EQ(parsed.size(), 1u);
        EXPECT_TRUE(parsed["error"].is_string());
    }
    EXPECT_TRUE(logs().empty());
}

TEST_F(MenuSnapshotTest, FirstOfEqualNamesAndCanonicalEquality) {
    load(R"J({"apps": [
        {"name": "Caf\u00e9", "pid": 1, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [{"attrs": {"AXTitle": "First"}}]}}}}},
        {"name": "Caf\u00e9", "pid": 2, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [{"attrs": {"AXTitle": "Second"}}]}}}}}]})J");
    // The decomposed spelling names the same application; "app" keeps it as given.
    const json snapshot = takeJson(zeblo_get_app_menus("Cafe\xcc\x81"));
    EXPECT_EQ(snapshot["app"], "Cafe\xcc\x81");
    EXPECT_EQ(snapshot["menus"][0]["title"], "First");
}

TEST_F(MenuSnapshotTest, EscapingInBothLayouts) {
    const std::string name = "Q\"u\\o/te \xc3\xa9\xe2\x9c\x93\t";  // quote, backslash, slash, non-ASCII, tab
    const std::string escaped = "Q\\\"u\\\\o\\/te \xc3\xa9\xe2\x9c\x93\\t";
    json desktop = json::parse(R"J({"apps": [
        {"pid": 1, "element": {"attrs": {"AXMenuBar": {"attrs": {}}}}},
        {"pid": 2, "element": {"attrs": {"AXMenuBar": {"attrs": {"AXChildren": [{"attrs": {}}]}}}}}]})J");
    desktop["apps"][0]["name"] = name;
    desktop["apps"][1]["name"] = name + "2";
    desktop["apps"][1]["element"]["attrs"]["AXMenuBar"]["attrs"]["AXChildren"][0]["attrs"]["AXTitle"] = name;
    load(desktop.dump());

    const std::string oneLine = take(zeblo_get_app_menus(name.c_str()));
    EXPECT_EQ(oneLine, "{\"app\": \"" + escaped + "\", \"menus\": []}");
    EXPECT_EQ(json::parse(oneLine)["app"], name);

    const std::string pretty = take(zeblo_get_app_menus((name + "2").c_str()));
    EXPECT_NE(pretty.find("\"app\" : \"" + escaped + "2\""), std::string::npos) << pretty;
    EXPECT_NE(pretty.find("\"title\" : \"" + escaped + "\""), std::string::npos) << pretty;
    const json parsed = json::parse(pretty);
    EXPECT_EQ(parsed["app"], name + "2");
    EXPECT_EQ(parsed["menus"][0]["title"], name);
}

TEST_F(MenuSnapshotTest, AttributeDiagnosticsAreLoggedLiterally) {
    load(desktopWithMenuBar(R"J({"attrs": {"AXTitle": "Run %s '1'", "AXMenuItemCommandID": "x", "AXRole": "AXMenuItem",
        "AXPerformACTION": true, "\u00c9ACTION": 1, "\u00c9tat": 1, "\u00c9COMMANDE": 1, "AXCmdKey": 1, "AXAct": 2}})J"));
    const json snapshot = takeJson(zeblo_get_app_menus("Ed"));
    EXPECT_EQ(snapshot["menus"][0]["title"], "Run %s '1'");
    const std::vector<std::string> expected = {"MenuItem 'Run %s '1'' has attribute: AXMenuItemCommandID",
                                               "MenuItem 'Run %s '1'' has attribute: AXPerformACTION",
                                               "MenuItem 'Run %s '1'' has attribute: \xc3\x89"
                                               "ACTION",
                                               "MenuItem 'Run %s '1'' has attribute: \xc3\x89"
                                               "COMMANDE"};
    EXPECT_EQ(logs(), expected);
}

TEST_F(MenuSnapshotTest, NullListEntriesTakeDefaults) {
    load(desktopWithMenuBar(R"J(null, {"attrs": {"AXTitle": "B", "AXChildren": [null]}})J"));
    const json snapshot = takeJson(zeblo_get_app_menus("Ed"));
    const json expected = json::parse(R"J([
        {"title": "(no title)", "path": [], "enabled": true, "checked": false},
        {"title": "B", "path": [], "enabled": true, "checked": false, "children": [
          {"title": "(no title)", "path": ["B"], "enabled": true, "checked": false}]}])J");
    EXPECT_EQ(snapshot["menus"], expected);
}

}  // namespace
}  // namespace zeblo::testing

// The menu record's JSON form read back: round trips through decoding, and
// what decoding accepts and refuses.
#include "ops/menus/menu_item.h"

#include <string>
#include <vector>

#include "core/json_writer.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using nlohmann::json;

std::string encodePretty(const MenuItem& item) {
    zeblo::json::Writer w(zeblo::json::Layout::pretty);
    item.encode(w);
    return w.take();
}

class MenuItemTest : public SimTest {};

TEST_F(MenuItemTest, SnapshotRecordsRoundTrip) {
    loadFile("examples/desktop.json");
    const std::string text = take(zeblo_get_app_menus("Quick Notes"));
    const json snapshot = json::parse(text);
    ASSERT_GE(snapshot["menus"].size(), 4u);

    // Decoding every record and writing them again reproduces the snapshot.
    std::vector<MenuItem> items;
    for (const json& menu : snapshot["menus"]) {
        items.push_back(MenuItem::decode(menu));
        EXPECT_EQ(items.back().pid, 0);
        EXPECT_EQ(encodePretty(menu.get<MenuItem>()), encodePretty(items.back()));
    }
    EXPECT_EQ(encodeMenuBar(snapshot["app"].get<std::string>(), items), text);
}

TEST_F(MenuItemTest, RecordsRoundTripWithEveryOptionalField) {
    MenuItem item;
    item.title = "Sa\"ve/\\ \xc3\xbc";
    item.path = {"File", "", "(no title)"};
    item.enabled = false;
    item.checked = true;
    item.cmdChar = "";
    item.cmdModifiers = -9223372036854775807LL - 1;
    item.pid = 0;
    MenuItem& child = item.children.emplace().emplace_back();
    child.title = "Child";
    child.cmdModifiers = 9223372036854775807LL;
    item.children->emplace_back().children.emplace();  // an empty submenu stays an empty array
    const std::string written = encodePretty(item);
    EXPECT_EQ(encodePretty(MenuItem::decode(json::parse(written))), written);
    EXPECT_NE(written.find("\"children\" : []"), std::string::npos);

    // Copies are deep: changing one leaves the other, and assignment copies
    // the whole tree back.
    MenuItem changed = item;
    (*changed.children)[0].cmdModifiers.reset();
    EXPECT_NE(encodePretty(changed), written);
    EXPECT_EQ(encodePretty(item), written);
    changed = item;
    EXPECT_EQ(encodePretty(changed), written);
}

TEST_F(MenuItemTest, DecodingDefaultsAndIgnoredKeys) {
    const MenuItem item = MenuItem::decode(json::parse(R"J({"title": "T", "path": [], "enabled": true,
        "checked": false, "cmdChar": null, "cmdModifiers": null, "children": null, "pid": 44, "extra": [1]})J"));
    EXPECT_EQ(item.title, "T");
    EXPECT_FALSE(item.cmdChar.has_value());
    EXPECT_FALSE(item.cmdModifiers.has_value());
    EXPECT_FALSE(item.children.has_value());
    EXPECT_EQ(item.pid, 0);
    EXPECT_EQ(encodePretty(item), "{\n  \"title\" : \"T\",\n  \"path\" : [],\n  \"enabled\" : true,\n  \"checked\" : false\n}");
}

// What decoding refuses, with the exceptions the JSON reader itself gives for
// the same mismatches.
TEST_F(MenuItemTest, DecodingRefusesWhatTheFormDoesNot) {
    const std::string members = R"J("title": "T", "path": [], "enabled": true, "checked": false)J";
    const std::pair<std::string, int> refused[] = {
        {R"J({"path": [], "enabled": true, "checked": false})J", 403},  // a required key missing
        {"{" + members + R"J(, "cmdModifiers": "x"})J", 302},
        {"{" + members + R"J(, "cmdModifiers": 1.5})J", 302},
        {"{" + members + R"J(, "cmdModifiers": 18446744073709551615})J", 406},
        {"{" + members + R"J(, "children": 5})J", 302},
        {"{" + members + R"J(, "children": [{"title": 1}]})J", 302},
    };
    for (const auto& [text, id] : refused) {
        try {
            MenuItem::decode(json::parse(text));
            ADD_FAILURE() << "decoded " << text;
        } catch (const json::exception& e) {
            EXPECT_EQ(e.id, id) << text << ": " << e.what();
        }
    }
}

}  // namespace
}  // namespace zeblo::testing

// The menu record's JSON form read back: round trips through decoding, and
// what decoding accepts and refuses.
#include "support/sim_fixture.h"

#include <string>

#include "core/json_writer.h"
#include "ops/menus/menu_item.h"

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

    // Decoding every record and writing it again reproduces the snapshot.
    zeblo::json::Writer w(zeblo::json::Layout::pretty);
    w.beginObject();
    w.key("app");
    w.string(snapshot["app"].get<std::string>());
    w.key("menus");
    w.beginArray();
    for (const json& menu : snapshot["menus"]) {
        const MenuItem item = MenuItem::decode(menu);
        EXPECT_EQ(item.pid, 0);
        EXPECT_EQ(MenuItem::decode(json::parse(encodePretty(item))), item);
        EXPECT_EQ(menu.get<MenuItem>(), item);
        item.encode(w);
    }
    w.endArray();
    w.endObject();
    EXPECT_EQ(w.take(), text);
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
    const MenuItem copy = item;
    EXPECT_EQ(copy, item);
    EXPECT_EQ(MenuItem::decode(json::parse(encodePretty(item))), item);
    EXPECT_NE(encodePretty(item).find("\"children\" : []"), std::string::npos);

    MenuItem changed = item;
    (*changed.children)[0].cmdModifiers.reset();
    EXPECT_FALSE(changed == item);
    changed = item;  // assignment copies the whole tree back
    EXPECT_EQ(changed, item);
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

}  // namespace
}  // namespace zeblo::testing

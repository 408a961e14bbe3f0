// The menu commands of the zeblo tool, on the bundled example desktop.
#include "support/sim_fixture.h"

#include <string>

namespace zeblo::testing {
namespace {

using nlohmann::json;

std::string onExample(const std::string& args) {
    return "--simulate '" + sourcePath("examples/desktop.json") + "' " + args;
}

// The example's menu bar shows what a real one does: an application menu,
// File, Edit with a submenu, View with checked items, key equivalents with
// modifiers, a disabled item and titles ending in an ellipsis.
TEST(MenuCliTest, ExampleMenuBarSnapshot) {
    const ToolRun run = runTool(onExample("menus 'Quick Notes'"));
    ASSERT_EQ(run.exitCode, 0);
    const json snapshot = json::parse(run.out);
    EXPECT_EQ(snapshot["app"], "Quick Notes");
    std::vector<std::string> titles;
    for (const json& menu : snapshot["menus"]) titles.push_back(menu["title"]);
    EXPECT_EQ(titles, (std::vector<std::string>{"Quick Notes", "File", "Edit", "View"}));

    const json& edit = snapshot["menus"][2]["children"];
    const json& find = edit[edit.size() - 1];
    EXPECT_EQ(find["title"], "Find");
    EXPECT_EQ(find["children"][0]["title"], "Find\xe2\x80\xa6");
    EXPECT_EQ(find["children"][0]["path"], json::array({"Edit", "Find"}));

    int checked = 0, disabled = 0, withModifiers = 0, ellipsis = 0;
    for (const json& menu : snapshot["menus"]) {
        for (const json& item : menu["children"]) {
            checked += item["checked"].get<bool>();
            disabled += !item["enabled"].get<bool>();
            withModifiers += item.contains("cmdModifiers") && item["cmdModifiers"] != 0;
            const std::string title = item["title"];
            ellipsis += title.size() > 3 && title.ends_with("\xe2\x80\xa6");
        }
    }
    EXPECT_GE(checked, 2);
    EXPECT_GE(disabled, 2);
    EXPECT_GE(withModifiers, 2);
    EXPECT_GE(ellipsis, 2);

    // The frontmost application when no name is given.
    EXPECT_EQ(json::parse(runTool(onExample("menus")).out)["app"], "Quick Notes");
}

TEST(MenuCliTest, ClickExistsEnabled) {
    EXPECT_EQ(runTool(onExample("menu-click 'Quick Notes' File 'Save As\xe2\x80\xa6'")).out, "true\n");
    const ToolRun refused = runTool(onExample("menu-click 'Quick Notes' File 'Revert to Saved'"));
    EXPECT_EQ(refused.out, "false\n");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(runTool(onExample("menu-exists 'Quick Notes' Edit Find 'Find Next'")).out, "true\n");
    EXPECT_EQ(runTool(onExample("menu-exists 'quick notes' Edit")).out, "false\n");
    EXPECT_EQ(runTool(onExample("menu-enabled 'Quick Notes' Edit Redo")).out, "false\n");
    EXPECT_EQ(runTool(onExample("menu-enabled '' Edit Undo")).out, "true\n");
    EXPECT_EQ(runTool(onExample("menu-click 'Quick Notes' 2>/dev/null")).exitCode, 2);
    EXPECT_EQ(runTool(onExample("menus a b 2>/dev/null")).exitCode, 2);
}

TEST(MenuCliTest, RefusedClickTrace) {
    const ToolRun run = runTool("--trace - " + onExample("menu-click 'Quick Notes' File 'Revert to Saved' 2>&1"));
    EXPECT_NE(run.out.find(R"({"log":"Menu item execute failed. Available actions (3):"})"), std::string::npos)
        << run.out;
    EXPECT_NE(run.out.find(R"({"log":"  AXCancel"})"), std::string::npos);
    EXPECT_NE(run.out.find("\"liveHandles\":0"), std::string::npos);
}

}  // namespace
}  // namespace zeblo::testing

#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

using nlohmann::json;

class FrontmostTest : public SimTest {};

TEST_F(FrontmostTest, NameAndFocusedWindowTitle) {
    load(R"({"apps": [{"name": "Mail", "pid": 120, "element": {"attrs": {
                 "AXFocusedWindow": {"attrs": {"AXTitle": "Inbox"}}}}}],
             "frontmost": 120})");
    const json info = takeJson(zeblo_get_frontmost_info());
    EXPECT_EQ(info, json({{"app", "Mail"}, {"window", "Inbox"}}));
}

TEST_F(FrontmostTest, WindowTitleFallsBackToEmpty) {
    // Each app shows one way the focused window's title can be missing.
    load(R"({"apps": [
        {"name": "NoWindows", "pid": 1, "element": {"attrs": {}}},
        {"name": "NullWindow", "pid": 2, "element": {"attrs": {"AXFocusedWindow": null}}},
        {"name": "Refused", "pid": 3, "element": {"errors": {"AXFocusedWindow": -25211}}},
        {"name": "NotAnElement", "pid": 4, "element": {"attrs": {"AXFocusedWindow": "window"}}},
        {"name": "Untitled", "pid": 5, "element": {"attrs": {"AXFocusedWindow": {"attrs": {}}}}},
        {"name": "NumberTitle", "pid": 6, "element": {"attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": 7}}}}},
        {"name": "FloatTitle", "pid": 7, "element": {"attrs": {"AXFocusedWindow": {"attrs": {"AXTitle": 1.5}}}}},
        {"name": "TitleError", "pid": 8, "element": {"attrs": {"AXFocusedWindow": {"errors": {"AXTitle": -25204}}}}}
    ]})");
    for (int pid = 1; pid <= 8; ++pid) {
        desk().setFrontmost(pid);
        const json info = takeJson(zeblo_get_frontmost_info());
        EXPECT_EQ(info["window"], "") << info.dump();
        EXPECT_EQ(info.size(), 2u);
    }
}

TEST_F(FrontmostTest, NamelessFrontmostAppAndEscaping) {
    load(R"({"apps": [{"name": null, "pid": 9, "element": {"attrs": {
                 "AXFocusedWindow": {"attrs": {"AXTitle": "a/b \"q\" \\ caf\u00e9\n"}}}}}],
             "frontmost": 9})");
    const std::string text = take(zeblo_get_frontmost_info());
    EXPECT_NE(text.find(R"("window":"a\/b \"q\" \\ caf)" "\xc3\xa9" R"(\n")"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("app":"")"), std::string::npos) << text;
}

TEST_F(FrontmostTest, NoFrontmostAppIsAnErrorObject) {
    load(R"({"apps": [{"name": "Mail", "pid": 1}]})");
    EXPECT_EQ(take(zeblo_get_frontmost_info()),
              "{\"error\": \"The operation couldn\xe2\x80\x99t be completed. (ZEBLOui.AppError error 1.)\"}");
    // A frontmost pid that no longer runs counts as none.
    desk().setFrontmost(77);
    EXPECT_EQ(takeJson(zeblo_get_frontmost_info()).count("error"), 1u);
}

TEST_F(FrontmostTest, RunningAppsInWorkspaceOrder) {
    load(R"({"apps": [
        {"name": "Finder", "pid": 1}, {"name": "Mail", "pid": 2, "hidden": true},
        {"name": "", "pid": 3}, {"pid": 4}, {"name": "Helper", "pid": 5, "policy": 2},
        {"name": "Mail", "pid": 6}, {"name": "Caf\u00e9/Bar", "pid": 7}]})");
    EXPECT_EQ(take(zeblo_get_running_apps()), "[\"Finder\",\"Mail\",\"Helper\",\"Mail\",\"Caf\xc3\xa9\\/Bar\"]");
}

TEST_F(FrontmostTest, EmptyDesktop) {
    load(R"({})");
    EXPECT_EQ(take(zeblo_get_running_apps()), "[]");
    EXPECT_EQ(takeJson(zeblo_get_frontmost_info()).count("error"), 1u);
    EXPECT_TRUE(logs().empty());
    zeblo_free_string(nullptr);
    zeblo_free_string(zeblo_get_running_apps());
}

}  // namespace
}  // namespace zeblo::testing

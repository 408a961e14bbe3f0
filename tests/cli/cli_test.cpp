#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

std::string desktopArg() { return "--simulate " + sourcePath("examples/desktop.json"); }

TEST(Cli, StringCommandsPrintJsonAndALineBreak) {
    const ToolRun apps = runTool(desktopArg() + " apps");
    EXPECT_EQ(apps.exitCode, 0);
    ASSERT_FALSE(apps.out.empty());
    EXPECT_EQ(apps.out.back(), '\n');
    EXPECT_TRUE(nlohmann::json::parse(apps.out).is_array());

    const ToolRun front = runTool(desktopArg() + " frontmost");
    EXPECT_EQ(front.exitCode, 0);
    EXPECT_TRUE(nlohmann::json::parse(front.out).contains("app"));
}

TEST(Cli, UsageErrorsExitWithTwo) {
    EXPECT_EQ(runTool("2>/dev/null").exitCode, 2);
    EXPECT_EQ(runTool("no-such-command 2>/dev/null").exitCode, 2);
    EXPECT_EQ(runTool("apps extra 2>/dev/null").exitCode, 2);
    EXPECT_EQ(runTool("--bogus apps 2>/dev/null").exitCode, 2);
    EXPECT_EQ(runTool("--trace - apps 2>/dev/null").exitCode, 2);  // tracing needs a simulated desktop
    EXPECT_EQ(runTool("--simulate /nonexistent.json apps 2>/dev/null").exitCode, 3);
    EXPECT_EQ(runTool("--help").exitCode, 0);
}

TEST(Cli, TraceEndsWithTheClosingRecord) {
    const ToolRun run = runTool(desktopArg() + " --trace - frontmost 2>&1 >/dev/null");
    EXPECT_EQ(run.exitCode, 0);
    ASSERT_FALSE(run.out.empty());
    std::string last = run.out.substr(0, run.out.size() - 1);
    last = last.substr(last.rfind('\n') + 1);
    const auto end = nlohmann::json::parse(last);
    ASSERT_TRUE(end.contains("end"));
    EXPECT_EQ(end["end"]["liveHandles"], 0);
    EXPECT_TRUE(end["end"]["clock"].is_number());
    EXPECT_TRUE(end["end"]["pasteboard"].is_array());
}

TEST(Cli, WithoutSimulationUsesTheMachineDefault) {
    const ToolRun run = runTool("apps");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "[]\n");
}

}  // namespace
}  // namespace zeblo::testing

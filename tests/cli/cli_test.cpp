// The zeblo tool: every command word reaches its export with its arguments
// read as documented, the results are printed with their exit codes, usage
// errors exit with 2, and the trace ends with the closing record.
#include "cli.h"

#include <map>
#include <set>

#include "capi/export_table.h"
#include "capi/plus/plus_export_table.h"
#include "support/sim_fixture.h"

namespace zeblo::testing {
namespace {

std::string onExample(const std::string& args) {
    return "--simulate " + sourcePath("examples/desktop.json") + " " + args;
}

struct Row {
    const char* args;
    int exitCode;
    const char* expected;  // found in the output (the result, then the trace)
};

TEST(Cli, EveryCommandOnTheExampleDesktop) {
    const Row rows[] = {
        {"apps", 0, R"(["Finder","Quick Notes","Mail","Sync Helper"])"},
        {"frontmost", 0, "{\"app\":\"Quick Notes\",\"window\":\"Groceries \xe2\x80\x94 Edited\"}\n"},
        {"focus notes '' 1 0 0", 0, R"({"activate":202,"options":2,"accepted":true})"},
        {"focus nowhere '' 1 0 0", 1, "false\n"},
        {"focus notes '' 1 0 -1", 0, "true\n"},
        {"launch Sketchpad", 0, "true\n"},
        {"launch Nowhere", 1, "false\n"},
        {"in-text-field", 0, "true\n"},
        {"menus", 0, "\"app\" : \"Quick Notes\""},
        {"menu-click 'Quick Notes' File 'Save As\xe2\x80\xa6'", 0, "true\n"},
        {"menu-click 'Quick Notes' File 'Revert to Saved'", 1, R"({"log":"  AXCancel"})"},
        {"menu-exists 'Quick Notes' Edit Find 'Find Next'", 0, "true\n"},
        {"menu-exists 'quick notes' Edit", 1, "false\n"},
        {"menu-enabled '' Edit Undo", 0, "true\n"},
        {"menu-enabled 'Quick Notes' Edit Redo", 1, "false\n"},
        {"key 'Quick Notes' s 8", 0, R"({"key":1,"down":true,"flags":1048576,"marker":null})"},
        {"key Mail Page_Up -1", 1, R"({"log":"zeblo_send_keystroke error: Invalid key character: Page_Up"})"},
        {"chord 0xFFFFFFFFFFFFFFFF 55 9", 0, R"({"key":9,"down":true,"flags":1966080,"marker":387709029455})"},
        {"type 'a!' --mark", 0, R"({"key":0,"down":true,"flags":null,"marker":387709029455})"},
        {"type a", 0, R"({"key":0,"down":true,"flags":null,"marker":null})"},
        {"paste 'caf\xc3\xa9'", 0, R"("pasteboard":[{"public.utf8-plain-text":"what the user copied")"},
        {"fill 'eggs' --enter", 0, R"({"key":36,"down":true,"flags":null,"marker":387709029455})"},
        {"windows notes", 0, "[\"Groceries \xe2\x80\x94 Edited\",\"Settings\"]\n"},
        {"window-exists Mail Drafts", 1, "false\n"},
        {"window-text Mail inbox", 0, R"("[AXButton Title] Reply"])"},
        {"buttons 'Quick Notes' groceries", 0, "[\"Save\",\"Share\xe2\x80\xa6\"]\n"},
        {"popup-items 'Quick Notes' '' 'font size'", 0, R"(["Small","Medium","Large"])"},
        {"click-button 'Quick Notes' groceries share", 0, "true\n"},
        {"click-checkbox notes '' spelling", 0, "true\n"},
        {"set-checkbox notes '' spelling 1", 0, "true\n"},
        {"wait-window 'Quick Notes' 'Export Complete' 0 1000", 0, R"({"end":{"clock":0.25,"liveHandles":0)"},
        {"close-window notes settings -1", 0, "true\n"},
    };
    for (const Row& row : rows) {
        const ToolRun run = runTool(onExample(std::string("--trace - ") + row.args + " 2>&1"));
        EXPECT_EQ(run.exitCode, row.exitCode) << row.args;
        EXPECT_NE(run.out.find(row.expected), std::string::npos) << row.args << "\n" << run.out;
        EXPECT_NE(run.out.find("\"liveHandles\":0"), std::string::npos) << row.args;
    }
}

// A command for each export of either table but the two that only serve a
// host (zeblo_free_string, zeblo_last_failure), whose words give each of the
// export's parameters (a query's several fields).
TEST(Cli, CommandsFollowTheExportTables) {
    std::map<std::string_view, int> commandsOf;
    for (const cli::Command& command : cli::commands()) {
        const capi::Export* row = capi::plus::findAnyExport(command.exportName);
        ASSERT_NE(row, nullptr) << command.name;
        ++commandsOf[row->name];
        std::set<std::string_view> given, wanted;
        for (const capi::Param& p : row->params) wanted.insert(p.name);
        for (const cli::Word& w : command.words) {
            given.insert(w.param);
            // A word gives a field exactly when its parameter is a query.
            for (const capi::Param& p : row->params) {
                if (p.name == w.param) {
                    EXPECT_EQ(w.field.empty(), p.kind != capi::ParamKind::query) << w.word;
                }
            }
        }
        EXPECT_EQ(given, wanted) << command.name;
    }
    for (const auto* table : {&capi::exportTable(), &capi::plus::plusExportTable()}) {
        for (const capi::Export& row : *table) {
            const bool hostOnly = row.name == "zeblo_free_string" || row.name == "zeblo_last_failure";
            EXPECT_EQ(commandsOf[row.name], hostOnly ? 0 : 1) << row.name;
        }
    }
}

TEST(Cli, UsageErrorsExitWithTwo) {
    for (const char* args : {"",
                             "no-such-command",
                             "apps extra",
                             "--bogus apps",
                             "focus notes '' 1 0",
                             "focus notes '' 2 0 0",
                             "focus notes '' 1 yes 0",
                             "focus notes '' 1 0 soon",
                             "focus notes '' 1 0 0x100000000",
                             "launch",
                             "launch a b",
                             "in-text-field now",
                             "menus a b",
                             "menu-click 'Quick Notes'",
                             "key Mail a",
                             "key Mail a 1 2",
                             "key Mail a x",
                             "chord",
                             "chord -1 3",
                             "chord 0 70000",
                             "chord 0 -1",
                             "chord 0x 3",
                             "chord 18446744073709551616 3",
                             "type",
                             "type a b",
                             "paste a --mark",
                             "fill",
                             "set-checkbox notes '' spelling x"}) {
        EXPECT_EQ(runTool(onExample(args) + " 2>/dev/null").exitCode, 2) << args;
    }
    EXPECT_EQ(runTool("--trace - apps 2>/dev/null").exitCode, 2);  // tracing needs a simulated desktop
    EXPECT_EQ(runTool("--simulate /nonexistent.json apps 2>/dev/null").exitCode, 3);
    EXPECT_EQ(runTool("--help").exitCode, 0);
}

TEST(Cli, TraceEndsWithTheClosingRecord) {
    const ToolRun run = runTool(onExample("--trace - frontmost 2>&1 >/dev/null"));
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

}  // namespace
}  // namespace zeblo::testing

namespace zeblo::testing {
namespace {

TEST(Cli, ElementCommandsFindActAndExitWithOneOnAnErrorObject) {
    const ToolRun found = runTool(onExample("find 'Quick Notes' author textfield Settings"));
    ASSERT_EQ(found.exitCode, 0) << found.out;
    const nlohmann::json matches = nlohmann::json::parse(found.out)["matches"];
    ASSERT_EQ(matches.size(), 1u) << found.out;
    const std::string ref = matches[0]["ref"];
    EXPECT_EQ(runTool(onExample("act '" + ref + "' set_value Ada")).exitCode, 0);
    EXPECT_NE(runTool(onExample("tree 'Quick Notes' Settings")).out.find("\"Autosave notes\""), std::string::npos);
    EXPECT_EQ(runTool(onExample("act 7:0.9~0000 press")).exitCode, 1);
    EXPECT_EQ(runTool(onExample("keys Mail 'ctrl+shift+r'")).exitCode, 0);
}

}  // namespace
}  // namespace zeblo::testing

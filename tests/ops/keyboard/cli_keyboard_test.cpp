// The keyboard commands of the zeblo tool on the example desktop.
#include <sstream>

#include "keyboard_support.h"

namespace zeblo::testing {
namespace {

using namespace kb;

// Runs the tool on the example desktop with the trace on standard output
// after the result; gives the exit code, the first line and the trace records.
struct Traced {
    int exitCode;
    std::string result;
    std::vector<Json> records;
};

Traced traced(const std::string& args) {
    const ToolRun run = runTool("--simulate " + sourcePath("examples/desktop.json") + " --trace - " + args + " 2>&1");
    Traced t{run.exitCode, {}, {}};
    std::istringstream lines(run.out);
    std::getline(lines, t.result);
    for (std::string line; std::getline(lines, line);) {
        Json j = Json::parse(line, nullptr, false);
        if (!j.is_discarded()) t.records.push_back(j);
    }
    return t;
}

std::vector<Json> keys(const Traced& t) {
    std::vector<Json> out;
    for (const Json& r : t.records)
        if (r.contains("key")) out.push_back(r);
    return out;
}

TEST(KeyboardCli, KeyAndChord) {
    Traced t = traced("key 'Quick Notes' s 8");
    EXPECT_EQ(t.exitCode, 0);
    EXPECT_EQ(t.result, "true");
    EXPECT_EQ(asArray(keys(t)), asArray(press(1, kCommand)));

    t = traced("key Mail '!' -1");
    EXPECT_EQ(t.exitCode, 1);
    EXPECT_EQ(t.result, "false");
    EXPECT_EQ(t.records.front(), log("zeblo_send_keystroke error: Invalid key character: !"));

    t = traced("chord 0xFFFFFFFFFFFFFFFF 55 9");
    EXPECT_EQ(t.exitCode, 0);
    const std::uint64_t all = kShift | kControl | kOption | kCommand;
    EXPECT_EQ(asArray(keys(t)), asArray({key(55, true, all, kMarker), key(9, true, all, kMarker),
                                         key(9, false, all, kMarker), key(55, false, all, kMarker)}));

    t = traced("chord 1048576");  // no codes: nothing pressed
    EXPECT_EQ(t.exitCode, 0);
    EXPECT_TRUE(keys(t).empty());
}

TEST(KeyboardCli, TypePasteFill) {
    Traced t = traced("type 'a!' --mark");
    EXPECT_EQ(t.exitCode, 0);
    EXPECT_EQ(keys(t).size(), 6u);
    EXPECT_EQ(keys(t).front(), key(0, true, std::nullopt, kMarker));
    EXPECT_EQ(traced("type a").records.front(), key(0, true));

    // The example's pasteboard (plain text and rich text) is back afterwards.
    t = traced("paste 'caf\xC3\xA9'");
    EXPECT_EQ(t.exitCode, 0);
    ASSERT_FALSE(t.records.empty());
    const Json end = t.records.back()["end"];
    EXPECT_EQ(end["pasteboard"], Json::parse(R"([{"public.utf8-plain-text": "what the user copied",
                                                  "public.rtf": "{\\rtf1 hi}"}])"));
    EXPECT_EQ(end["liveHandles"], 0);

    t = traced("fill 'eggs, bread' --enter");
    EXPECT_EQ(t.exitCode, 0);
    EXPECT_EQ(asArray(keys(t)), asArray(press(36, std::nullopt, kMarker)));
    EXPECT_EQ(traced("fill x").exitCode, 0);
}

TEST(KeyboardCli, UsageErrors) {
    for (const char* args : {"key Mail a", "key Mail a 1 2", "key Mail a x", "chord", "chord -1 3", "chord 0 70000",
                             "chord 0 -1", "chord 0x 3", "chord 18446744073709551616 3", "type", "type a b",
                             "paste a --mark", "fill"}) {
        EXPECT_EQ(runTool(std::string("--simulate ") + sourcePath("examples/desktop.json") + " " + args + " 2>/dev/null")
                      .exitCode,
                  2)
            << args;
    }
}

}  // namespace
}  // namespace zeblo::testing

// Single key presses into an application and global chords, through the
// exports: the exact events, flags and markers, and every failure.
#include <tuple>

#include "keyboard_support.h"

namespace zeblo::testing {
namespace {

using namespace kb;

constexpr const char* kApps = R"({
  "apps": [{"name": "Finder", "pid": 1}, {"name": "Notes", "pid": 2},
           {"name": "Caf\u00e9", "pid": 3}, {"pid": 4}, {"name": "Notes", "pid": 5},
           {"name": "Stubborn", "pid": 6, "activate": false}],
  "frontmost": 1)";

std::string desktop(const std::string& extra = "") { return std::string(kApps) + extra + "}"; }

Json activate(int pid, bool accepted = true) { return Json{{"activate", pid}, {"options", 0}, {"accepted", accepted}}; }

const std::string kKeystrokeError =
    "zeblo_send_keystroke error: The operation couldn\u2019t be completed. (ZEBLOui.KeystrokeError error ";

class SendTest : public SimTest {
protected:
    std::vector<Json> trace() { return desk().trace(); }
};

TEST_F(SendTest, ActivatesPausesAndPressesWithFlagsAndNoMarker) {
    load(desktop());
    EXPECT_TRUE(done(zeblo_send_keystroke("Notes", "s", 9)));
    std::vector<Json> want{activate(2), sleep(0.05)};
    append(want, press(1, kShift | kCommand));
    EXPECT_EQ(asArray(trace()), asArray(want));
    EXPECT_DOUBLE_EQ(desk().clock(), 0.05);
}

TEST_F(SendTest, ModifierBitsMapToFlags) {
    load(desktop());
    // Flags are always set: 0 gives an explicit 0, never "unset".
    const std::pair<std::int32_t, std::uint64_t> cases[] = {
        {0, 0},          {1, kShift},
        {2, kControl},   {4, kOption},
        {8, kCommand},   {9, kShift | kCommand},
        {16, 0},         {-1, kShift | kControl | kOption | kCommand},
        {0x7FFFFFF0, 0},
    };
    for (const auto& [modifiers, flags] : cases) {
        clearTrace();
        EXPECT_TRUE(done(zeblo_send_keystroke("", "F5", modifiers)));
        EXPECT_EQ(asArray(traceOf("key")), asArray(press(96, flags))) << modifiers;
    }
    // An upper-case key text adds no Shift: Shift comes from the bits alone.
    const std::tuple<const char*, std::int32_t, std::vector<Json>> keys[] = {
        {"A", 0, press(0, 0)}, {"=", 9, press(24, kShift | kCommand)}, {"/", 1, press(44, kShift)}};
    for (const auto& [key, modifiers, want] : keys) {
        clearTrace();
        EXPECT_TRUE(done(zeblo_send_keystroke(nullptr, key, modifiers)));
        EXPECT_EQ(asArray(traceOf("key")), asArray(want)) << key;
    }
}

TEST_F(SendTest, FindsTheApplicationByExactName) {
    load(desktop());
    // Empty and null mean the frontmost application.
    EXPECT_TRUE(done(zeblo_send_keystroke(nullptr, "\n", 0)));
    EXPECT_TRUE(done(zeblo_send_keystroke("", "\t", 0)));
    // The first of two with the name; canonically equivalent forms are equal.
    EXPECT_TRUE(done(zeblo_send_keystroke("Notes", "up", 0)));
    EXPECT_TRUE(done(zeblo_send_keystroke("Cafe\xCC\x81", "down", 0)));
    // An activation refused is not examined.
    EXPECT_TRUE(done(zeblo_send_keystroke("Stubborn", "x", 0)));
    EXPECT_EQ(asArray(traceOf("activate")),
              asArray({activate(1), activate(1), activate(2), activate(3), activate(6, false)}));
    EXPECT_EQ(traceOf("key").size(), 10u);
    EXPECT_TRUE(logs().empty());
}

TEST_F(SendTest, ApplicationErrors) {
    load(desktop());
    // No loose matching: another letter case or a part of the name is unknown.
    for (const char* name : {"notes", "Note", "Notes ", "Mail"}) {
        EXPECT_FALSE(done(zeblo_send_keystroke(name, "a", 0)));
    }
    desk().setFrontmost(std::nullopt);
    EXPECT_FALSE(done(zeblo_send_keystroke(nullptr, "a", 0)));
    std::vector<std::string> want(4, kKeystrokeError + "0.)");
    want.push_back(kKeystrokeError + "1.)");
    EXPECT_EQ(logs(), want);
}

TEST_F(SendTest, InvalidKeyIsReportedBeforeTheApplication) {
    load(desktop());
    EXPECT_FALSE(done(zeblo_send_keystroke("No Such App", "Page_Up", 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("No Such App", "!", 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "home", 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "RETURN", 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", nullptr, 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "%s%n", 0)));
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "\xFF", 0)));
    EXPECT_EQ(logs(), (std::vector<std::string>{
                          "zeblo_send_keystroke error: Invalid key character: Page_Up",
                          "zeblo_send_keystroke error: Invalid key character: !",
                          "zeblo_send_keystroke error: Invalid key character: home",
                          "zeblo_send_keystroke error: Invalid key character: RETURN",
                          "zeblo_send_keystroke error: Invalid key character: ",
                          "zeblo_send_keystroke error: Invalid key character: %s%n",
                          "zeblo_send_keystroke error: Invalid key character: \uFFFD",
                      }));
    EXPECT_TRUE(traceOf("activate").empty());
    EXPECT_TRUE(traceOf("key").empty());
}

TEST_F(SendTest, EventCreationFailures) {
    load(desktop(R"(, "failures": {"keyboardEvents": [1, 3]})"));
    // The first event fails: the application was activated, nothing posted.
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "a", 0)));
    EXPECT_EQ(asArray(trace()),
              asArray({activate(2), sleep(0.05), log("zeblo_send_keystroke error: Failed to create key down event")}));
    // The second succeeds, the third fails: the key-down stays posted.
    clearTrace();
    EXPECT_FALSE(done(zeblo_send_keystroke("Notes", "a", 2)));
    EXPECT_EQ(asArray(trace()), asArray({activate(2), sleep(0.05), key(0, true, kControl),
                                         log("zeblo_send_keystroke error: Failed to create key up event")}));
}

TEST_F(SendTest, GlobalChordDownInOrderUpInReverse) {
    load(desktop());
    const std::uint16_t codes[] = {55, 9};
    EXPECT_TRUE(done(zeblo_send_global_keystroke(codes, 2, 0x100000)));
    EXPECT_EQ(asArray(trace()), asArray({key(55, true, kCommand, kMarker), key(9, true, kCommand, kMarker),
                                         key(9, false, kCommand, kMarker), key(55, false, kCommand, kMarker)}));

    clearTrace();
    const std::uint16_t three[] = {1, 2, 1, 65535};
    EXPECT_TRUE(done(zeblo_send_global_keystroke(three, 4, 0)));
    std::vector<Json> want;
    for (int c : {1, 2, 1, 65535}) want.push_back(key(c, true, std::nullopt, kMarker));
    for (int c : {65535, 1, 2, 1}) want.push_back(key(c, false, std::nullopt, kMarker));
    EXPECT_EQ(asArray(trace()), asArray(want));
}

TEST_F(SendTest, GlobalModifierMaskIsReduced) {
    load(desktop());
    const std::uint16_t code[] = {3};
    const std::pair<std::uint64_t, std::optional<std::uint64_t>> cases[] = {
        {0x10000, std::nullopt},  // Caps Lock alone: the events keep their own flags
        {0x800000, std::nullopt},
        {0x100100, kCommand},
        {0x100000 + 0x80000 + 0x20000, kCommand | kOption | kShift},
        {~0ull, kCommand | kOption | kControl | kShift},
    };
    for (const auto& [mask, flags] : cases) {
        clearTrace();
        EXPECT_TRUE(done(zeblo_send_global_keystroke(code, 1, mask)));
        EXPECT_EQ(asArray(trace()), asArray(press(3, flags, kMarker))) << mask;
    }
}

TEST_F(SendTest, GlobalEmptyAndOutOfContractCounts) {
    load(desktop());
    const std::uint16_t codes[] = {7};
    EXPECT_TRUE(done(zeblo_send_global_keystroke(codes, 0, kCommand)));
    EXPECT_TRUE(done(zeblo_send_global_keystroke(nullptr, 0, 0)));
    EXPECT_TRUE(done(zeblo_send_global_keystroke(codes, -1, 0)));
    EXPECT_TRUE(done(zeblo_send_global_keystroke(nullptr, 5, 0)));
    EXPECT_TRUE(desk().trace().empty());
}

TEST_F(SendTest, GlobalFailures) {
    load(desktop(R"(, "failures": {"eventSource": true})"));
    const std::uint16_t codes[] = {55, 9, 12};
    // The source comes first, so even the empty chord fails.
    EXPECT_FALSE(done(zeblo_send_global_keystroke(codes, 0, 0)));
    EXPECT_EQ(logs(), std::vector<std::string>{"zeblo_send_global_keystroke error: Failed to create event source"});
    EXPECT_TRUE(traceOf("key").empty());

    desk().setEventSourceFails(false);
    desk().setFailingKeyboardEvents({2});
    clearTrace();
    EXPECT_FALSE(done(zeblo_send_global_keystroke(codes, 3, kShift)));
    EXPECT_EQ(asArray(trace()),
              asArray({key(55, true, kShift, kMarker),
                       log("zeblo_send_global_keystroke error: Failed to create key down event for keycode 9")}));

    // The fifth creation is the key-up of the middle code.
    desk().resetEventCount();
    desk().setFailingKeyboardEvents({5});
    clearTrace();
    EXPECT_FALSE(done(zeblo_send_global_keystroke(codes, 3, 0)));
    EXPECT_EQ(asArray(trace()),
              asArray({key(55, true, std::nullopt, kMarker), key(9, true, std::nullopt, kMarker),
                       key(12, true, std::nullopt, kMarker), key(12, false, std::nullopt, kMarker),
                       log("zeblo_send_global_keystroke error: Failed to create key up event for keycode 9")}));
}

}  // namespace
}  // namespace zeblo::testing

// Typing text through zeblo_type_text: the events of each character, Shift
// wrapping, marking, the pause, where typing stops, and every failure.
#include "keyboard_support.h"

namespace zeblo::testing {
namespace {

using namespace kb;

class TypeTextTest : public SimTest {
protected:
    void SetUp() override { load("{}"); }
    Json trace() { return asArray(desk().trace()); }
};

// The events of a character typed with Shift.
std::vector<Json> shifted(int code, std::optional<std::int64_t> marker) {
    return {key(56, true, std::nullopt, marker), key(code, true, kShift, marker), key(code, false, kShift, marker),
            key(56, false, std::nullopt, marker)};
}

TEST_F(TypeTextTest, MarkedAndUnmarkedSequences) {
    for (bool marked : {true, false}) {
        clearTrace();
        const std::optional<std::int64_t> marker = marked ? std::optional(kMarker) : std::nullopt;
        EXPECT_TRUE(done(zeblo_type_text("aB", marked)));
        std::vector<Json> want = press(0, std::nullopt, marker);
        want.push_back(sleep(0.005));
        append(want, shifted(11, marker));
        want.push_back(sleep(0.005));
        EXPECT_EQ(trace(), asArray(want)) << marked;
    }
}

TEST_F(TypeTextTest, DigitsSymbolsAndControls) {
    EXPECT_TRUE(done(zeblo_type_text("1!\t\n", false)));
    std::vector<Json> want = press(18);
    want.push_back(sleep(0.005));
    append(want, shifted(18, std::nullopt));
    want.push_back(sleep(0.005));
    append(want, press(48));
    want.push_back(sleep(0.005));
    append(want, press(36));
    want.push_back(sleep(0.005));
    EXPECT_EQ(trace(), asArray(want));
    // Repeated characters are pressed every time; one pause per character.
    clearTrace();
    EXPECT_TRUE(done(zeblo_type_text("zzzzzzzzzz", false)));
    EXPECT_EQ(traceOf("key").size(), 20u);
    EXPECT_EQ(traceOf("sleep").size(), 10u);
    EXPECT_NEAR(desk().clock(), 0.07, 1e-9);
}

TEST_F(TypeTextTest, EmptyAndNullTextTypeNothing) {
    EXPECT_TRUE(done(zeblo_type_text("", true)));
    EXPECT_TRUE(done(zeblo_type_text(nullptr, true)));
    EXPECT_EQ(trace(), Json::array());
}

TEST_F(TypeTextTest, StopsAtTheFirstUnsupportedCharacter) {
    EXPECT_FALSE(done(zeblo_type_text("ab\xE2\x82\xAC" "cd", false)));
    std::vector<Json> want = press(0);
    want.push_back(sleep(0.005));
    append(want, press(11));
    want.push_back(sleep(0.005));
    want.push_back(log("zeblo_type_text error: Unsupported character: '\xE2\x82\xAC'"));
    EXPECT_EQ(trace(), asArray(want));

    // Each of these is one character that is refused as a whole: its base
    // letter is not typed either. "%" is typed; the line keeps it literally.
    struct Refused {
        const char* text;
        const char* character;
        std::size_t typedBefore;
    };
    const Refused refused[] = {
        {"\r", "\r", 0}, {"x\r\n", "\r\n", 1}, {"\b", "\b", 0}, {"\x1b", "\x1b", 0},
        {"e\xCC\x81", "e\xCC\x81", 0}, {"%\xC3\xA9", "\xC3\xA9", 1}, {"\xFF", "\xEF\xBF\xBD", 0},
    };
    for (const auto& [text, character, typedBefore] : refused) {
        clearTrace();
        EXPECT_FALSE(done(zeblo_type_text(text, true)));
        EXPECT_EQ(logs(), std::vector<std::string>{std::string("zeblo_type_text error: Unsupported character: '") +
                                                   character + "'"});
        EXPECT_EQ(traceOf("sleep").size(), typedBefore) << text;
    }
}

TEST_F(TypeTextTest, EventCreationFailures) {
    struct Case {
        int failing;
        std::size_t posted;  // events of "A" posted before the failure
        const char* message;
    };
    const Case cases[] = {
        {1, 0, "Failed to create shift down event"},
        {2, 1, "Failed to create key down event"},
        {3, 2, "Failed to create key up event"},
        {4, 3, "Failed to create shift up event"},
    };
    const std::vector<Json> all = shifted(0, kMarker);
    for (const Case& c : cases) {
        clearTrace();
        desk().resetEventCount();
        desk().setFailingKeyboardEvents({c.failing});
        EXPECT_FALSE(done(zeblo_type_text("AA", true)));
        std::vector<Json> want(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(c.posted));
        want.push_back(log(std::string("zeblo_type_text error: ") + c.message));
        EXPECT_EQ(trace(), asArray(want)) << c.message;
    }
    // A failing key-up of an unshifted character leaves its key-down posted.
    clearTrace();
    desk().resetEventCount();
    desk().setFailingKeyboardEvents({4});
    EXPECT_FALSE(done(zeblo_type_text("qq", false)));
    EXPECT_EQ(trace(), asArray({key(12, true), key(12, false), sleep(0.005), key(12, true),
                                 log("zeblo_type_text error: Failed to create key up event")}));
}

TEST_F(TypeTextTest, EventSourceFailureComesFirst) {
    desk().setEventSourceFails(true);
    EXPECT_FALSE(done(zeblo_type_text("", false)));
    EXPECT_FALSE(done(zeblo_type_text("\r", false)));
    EXPECT_EQ(trace(), asArray({log("zeblo_type_text error: Failed to create event source"),
                                 log("zeblo_type_text error: Failed to create event source")}));
}

}  // namespace
}  // namespace zeblo::testing

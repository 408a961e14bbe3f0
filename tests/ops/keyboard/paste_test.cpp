// Pasting through zeblo_paste_text: the user's pasteboard comes back byte for
// byte (gathered into one item), the Command-V events, the pauses, and the
// state every failure leaves behind.
#include "keyboard_support.h"

namespace zeblo::testing {
namespace {

using namespace kb;
using sim::SimPasteboardItem;

constexpr const char* kPlain = "public.utf8-plain-text";

platform::Bytes bytes(std::string_view s) { return platform::Bytes(s.begin(), s.end()); }

// Every byte value, then the same reversed: not text in any encoding.
platform::Bytes binary() {
    platform::Bytes out;
    for (int i = 0; i < 256; ++i) out.push_back(static_cast<std::uint8_t>(i));
    for (int i = 255; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(i));
    return out;
}

// Three items, as after copying three files: several types, binary data, a
// type given twice, and a type the item cannot provide.
std::vector<SimPasteboardItem> userPasteboard() {
    return {
        {{{kPlain, bytes("first")}, {"public.rtf", bytes("{\\rtf1 first}")}, {"public.png", binary()}}},
        {{{"public.file-url", bytes("file:///tmp/a%20b")}, {"com.example.lazy", std::nullopt}}},
        {{{kPlain, bytes("third")}, {"public.data", platform::Bytes{0, 0, 0}}}},
    };
}

// The saved pairs, in order, on one item.
std::vector<std::pair<std::string, std::optional<platform::Bytes>>> mergedPairs() {
    return {{kPlain, bytes("first")},   {"public.rtf", bytes("{\\rtf1 first}")},
            {"public.png", binary()},   {"public.file-url", bytes("file:///tmp/a%20b")},
            {kPlain, bytes("third")},   {"public.data", platform::Bytes{0, 0, 0}}};
}

class PasteTest : public SimTest {
protected:
    void SetUp() override { load("{}"); }
    Json trace() { return asArray(desk().trace()); }
    Json setString(const std::string& text) {
        return Json{{"pasteboard", "setString"}, {"type", kPlain}, {"text", text}};
    }
    // The trace up to and including the Command-V events.
    std::vector<Json> pasteOf(const std::string& text) {
        std::vector<Json> want{Json{{"pasteboard", "clear"}}, setString(text), sleep(0.01)};
        append(want, press(9, kCommand, kMarker));
        return want;
    }
};

TEST_F(PasteTest, RestoresEveryTypeAndByteIntoOneItem) {
    desk().setPasteboard(userPasteboard());
    EXPECT_TRUE(done(zeblo_paste_text("hello")));

    const std::vector<SimPasteboardItem> after = desk().pasteboard();
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].entries, mergedPairs());

    std::vector<Json> want = pasteOf("hello");
    want.push_back(sleep(0.05));
    want.push_back(Json{{"pasteboard", "clear"}});
    want.push_back(Json{{"pasteboard", "write"}, {"items", sim::SimDesktop::pasteboardJson({SimPasteboardItem{mergedPairs()}})}});
    EXPECT_EQ(trace(), asArray(want));
    EXPECT_NEAR(desk().clock(), 0.06, 1e-9);
}

TEST_F(PasteTest, EmptyPasteboardStaysEmpty) {
    EXPECT_TRUE(done(zeblo_paste_text("x")));
    std::vector<Json> want = pasteOf("x");
    want.push_back(sleep(0.05));
    want.push_back(Json{{"pasteboard", "clear"}});
    EXPECT_EQ(trace(), asArray(want));
    EXPECT_TRUE(desk().pasteboard().empty());

    // Items whose data cannot be read count as nothing saved.
    desk().setPasteboard({{{{"com.example.lazy", std::nullopt}}}});
    EXPECT_TRUE(done(zeblo_paste_text("y")));
    EXPECT_TRUE(desk().pasteboard().empty());
}

TEST_F(PasteTest, AnyTextIsPastedUnchanged) {
    const std::string texts[] = {"", "line one\r\nline two\n", "caf\xC3\xA9 \xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD",
                                 "100% %s%n"};
    for (const std::string& text : texts) {
        clearTrace();
        desk().setPasteboard({{{{kPlain, bytes("kept")}}}});
        EXPECT_TRUE(done(zeblo_paste_text(text.c_str())));
        EXPECT_EQ(asArray(traceOf("text")), asArray({setString(text)}));
        ASSERT_EQ(desk().pasteboard().size(), 1u);
        EXPECT_EQ(desk().pasteboard()[0].entries.at(0).second, bytes("kept"));
    }
    // A null text is pasted as the empty text.
    clearTrace();
    EXPECT_TRUE(done(zeblo_paste_text(nullptr)));
    EXPECT_EQ(asArray(traceOf("text")), asArray({setString("")}));
}

TEST_F(PasteTest, FailuresLeaveTheTextAloneAndPostNothingMore) {
    struct Case {
        bool sourceFails;
        int failingEvent;  // 0: none
        std::size_t posted;
        const char* message;
    };
    const Case cases[] = {
        {true, 0, 0, "Failed to create event source"},
        {false, 1, 0, "Failed to create Cmd+V key down"},
        {false, 2, 1, "Failed to create Cmd+V key up"},
    };
    for (const Case& c : cases) {
        clearTrace();
        desk().resetEventCount();
        desk().setEventSourceFails(c.sourceFails);
        desk().setFailingKeyboardEvents(c.failingEvent ? std::set<int>{c.failingEvent} : std::set<int>{});
        desk().setPasteboard(userPasteboard());
        EXPECT_FALSE(done(zeblo_paste_text("secret")));

        // The pasteboard holds the text alone; the user's contents are gone.
        const std::vector<SimPasteboardItem> after = desk().pasteboard();
        ASSERT_EQ(after.size(), 1u);
        EXPECT_EQ(after[0].entries, (std::vector<std::pair<std::string, std::optional<platform::Bytes>>>{
                                        {kPlain, bytes("secret")}}));
        std::vector<Json> want = pasteOf("secret");
        want.resize(3 + c.posted);
        want.push_back(log(std::string("zeblo_paste_text error: ") + c.message));
        EXPECT_EQ(trace(), asArray(want)) << c.message;
    }
}

// A pasteboard the system would ask the user about (or refuses) is left as
// it is: nothing is read, written or posted.
TEST_F(PasteTest, UnreadablePasteboardIsNotTouched) {
    load(R"({"pasteboardReadable": false})");
    desk().setPasteboard(userPasteboard());
    EXPECT_FALSE(done(zeblo_paste_text("secret")));
    EXPECT_EQ(trace(), asArray({log("zeblo_paste_text error: Pasteboard cannot be read without asking the user")}));
    EXPECT_EQ(desk().pasteboard(), userPasteboard());
}

}  // namespace
}  // namespace zeblo::testing

#include <gtest/gtest.h>

#include "core/unicode.h"

namespace zeblo::text {
namespace {

const std::string kComposedE = "\xc3\xa9";     // é as one scalar
const std::string kDecomposedE = "e\xcc\x81";  // e + combining acute

TEST(Unicode, LowerCasingIsFullAndLocaleFree) {
    EXPECT_EQ(toLower("MAIL Box"), "mail box");
    EXPECT_EQ(toLower("\xe2\x84\xaa"), "k");                  // Kelvin sign
    EXPECT_EQ(toLower("\xc4\xb0"), "i\xcc\x87");              // İ: full mapping, two scalars
    EXPECT_EQ(toLower("\xce\xa3\xce\x91"), "\xcf\x83\xce\xb1");  // ΣΑ
    // A text that grows by more than the first guess of its length.
    std::string dotted, lowered;
    for (int i = 0; i < 20; ++i) {
        dotted += "\xc4\xb0";
        lowered += "i\xcc\x87";
    }
    EXPECT_EQ(toLower(dotted), lowered);
}

TEST(Unicode, GraphemeClusters) {
    EXPECT_EQ(graphemes("ab").size(), 2u);
    EXPECT_EQ(graphemes("\r\n").size(), 1u);
    EXPECT_EQ(graphemes(kDecomposedE).size(), 1u);
    EXPECT_EQ(graphemes("\xf0\x9f\x91\xa9\xe2\x80\x8d\xf0\x9f\x92\xbb").size(), 1u);  // ZWJ sequence
    EXPECT_TRUE(graphemes("").empty());
}

TEST(Unicode, WhitespaceIsRemovedByCluster) {
    EXPECT_EQ(removeWhitespace(" Activity\tMon\r\n"), "ActivityMon");
    EXPECT_EQ(removeWhitespace("Mail\xc2\xa0" "Box"), "MailBox");                // no-break space
    EXPECT_EQ(removeWhitespace("a\xe3\x80\x80" "b\xe2\x80\xaf" "c\xc2\x85"), "abc");  // U+3000, U+202F, U+0085
    EXPECT_EQ(removeWhitespace("a\xe2\x80\x8b" "b"), "a\xe2\x80\x8b" "b");       // ZWSP is not White_Space
    // A space followed by a combining mark is one cluster whose first scalar
    // is white space: the whole cluster goes.
    EXPECT_EQ(removeWhitespace("a \xcc\x81" "b"), "ab");
}

TEST(Unicode, CanonicalEquivalence) {
    EXPECT_TRUE(canonicallyEqual(kComposedE, kDecomposedE));
    EXPECT_FALSE(canonicallyEqual("Mail", "mail"));
    EXPECT_TRUE(canonicallyContains("caf" + kComposedE + " noir", "caf" + kDecomposedE));
    EXPECT_TRUE(canonicallyContains("caf" + kDecomposedE, kComposedE));
    // Matches respect cluster boundaries: a bare letter is not found inside
    // an accented one.
    EXPECT_FALSE(canonicallyContains("caf" + kComposedE, "cafe"));
    EXPECT_FALSE(canonicallyContains("caf" + kDecomposedE, "cafe"));  // the bytes are there, the letter is not
    EXPECT_TRUE(canonicallyContains("caf" + kDecomposedE + " noir", "noir"));
    EXPECT_FALSE(canonicallyContains("caf" + kComposedE, "\xcc\x81"));  // a mark alone is no cluster
    EXPECT_FALSE(canonicallyContains("anything", ""));
    EXPECT_FALSE(canonicallyContains("", ""));
}

TEST(Unicode, LooseMatch) {
    EXPECT_TRUE(looseMatch("Quick Notes", "notes"));
    EXPECT_FALSE(looseMatch("notes", "Quick Notes"));
    EXPECT_TRUE(looseMatch("Activity Monitor", "activity mon"));
    EXPECT_FALSE(looseMatch("Mail", "Mailbox"));
    EXPECT_TRUE(looseMatch("Inbox \xe2\x80\x93 3 unread", "INBOX"));
    EXPECT_TRUE(looseMatch("", ""));
    EXPECT_FALSE(looseMatch("Mail", ""));
    EXPECT_FALSE(looseMatch("Mail", "   "));
    EXPECT_FALSE(looseMatch("", "mail"));
    EXPECT_TRUE(looseMatch("Mail\xc2\xa0" "Box", "mailbox"));
    EXPECT_TRUE(looseMatch("R" + kComposedE + "sum" + kComposedE, "r" + kDecomposedE + "sum" + kDecomposedE));
    EXPECT_TRUE(looseMatch("Untitled 3 \xe2\x80\x94 Edited", "untitled3"));
}

TEST(Unicode, Utf8Validation) {
    EXPECT_TRUE(isValidUtf8("plain \xc3\xa9"));
    EXPECT_FALSE(isValidUtf8("\xff"));
    EXPECT_FALSE(isValidUtf8("\xed\xa0\x80"));
    EXPECT_EQ(decodeUtf8Lossy("ok"), "ok");
}

}  // namespace
}  // namespace zeblo::text

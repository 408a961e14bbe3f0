// The loose name match on Unicode cases the everyday examples do not reach.
#include <gtest/gtest.h>

#include <string>

#include "core/unicode.h"

namespace zeblo::text {
namespace {

TEST(LooseMatch, EveryWhiteSpaceCharacterGoesWithItsWholeCluster) {
    for (const char* space : {"\t", "\n", "\v", "\f", "\r", "\r\n", " ", "\xc2\x85", "\xc2\xa0", "\xe1\x9a\x80",
                              "\xe2\x80\x80", "\xe2\x80\x8a", "\xe2\x80\xa8", "\xe2\x80\xa9", "\xe2\x80\xaf",
                              "\xe2\x81\x9f", "\xe3\x80\x80", " \xcc\x81"}) {
        EXPECT_TRUE(looseMatch(std::string("Caf\xc3\xa9") + space + "Noir", "cafe\xcc\x81noir")) << space;
        EXPECT_TRUE(looseMatch(space, ""));
        EXPECT_FALSE(looseMatch("x", space));
    }
    EXPECT_FALSE(looseMatch("ae\xcc\x81 b", "aeb"));  // a letter keeps its mark
}

TEST(LooseMatch, CanonicalEquivalenceInsideTheSearch) {
    EXPECT_TRUE(looseMatch("\xc4\xb0stanbul", "I\xcc\x87STAN"));  // full lower-casing on both sides
    EXPECT_TRUE(looseMatch("xa\xcc\xa3\xcc\x81y", "A\xcc\x81\xcc\xa3"));  // marks in either order
    EXPECT_TRUE(looseMatch("\xed\x95\x9c\xea\xb8\x80 \xec\x95\xb1", "\xe1\x84\x92\xe1\x85\xa1\xe1\x86\xab"));  // jamo
    EXPECT_FALSE(looseMatch("\xed\x95\x9c", "\xed\x95\x98"));  // a syllable is not inside a longer one
    EXPECT_FALSE(looseMatch("Caf\xc3\xa9", "cafe"));
}

}  // namespace
}  // namespace zeblo::text

// The key code tables and the two lookups built on them.
#include "ops/key_codes.h"

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <map>
#include <string>

namespace zeblo::keyboard {
namespace {

std::string utf8(char32_t c) {
    char buf[U8_MAX_LENGTH];
    std::int32_t n = 0;
    U8_APPEND_UNSAFE(buf, n, static_cast<UChar32>(c));
    return std::string(buf, static_cast<std::size_t>(n));
}

// How each typeable character is typed on a US keyboard, written out from the
// keyboard itself rather than from the tables.
std::map<char32_t, KeyPress> usKeyboard() {
    std::map<char32_t, KeyPress> m;
    const int letters[26] = {0,  11, 8,  2,  14, 3, 5,  4,  34, 38, 40, 37, 46,
                             45, 31, 35, 12, 15, 1, 17, 32, 9,  13, 7,  16, 6};
    const int digits[10] = {29, 18, 19, 20, 21, 23, 22, 26, 28, 25};
    for (int i = 0; i < 26; ++i) {
        m[U'a' + i] = {static_cast<KeyCode>(letters[i]), false};
        m[U'A' + i] = {static_cast<KeyCode>(letters[i]), true};
    }
    for (int i = 0; i < 10; ++i) m[U'0' + i] = {static_cast<KeyCode>(digits[i]), false};
    const std::pair<char32_t, KeyPress> rest[] = {
        {U' ', {49, false}}, {U'\n', {36, false}}, {U'\t', {48, false}}, {U'`', {50, false}},  {U'~', {50, true}},
        {U'-', {27, false}}, {U'_', {27, true}},   {U'=', {24, false}},  {U'+', {24, true}},   {U'[', {33, false}},
        {U'{', {33, true}},  {U']', {30, false}},  {U'}', {30, true}},   {U'\\', {42, false}}, {U'|', {42, true}},
        {U';', {41, false}}, {U':', {41, true}},   {U'\'', {39, false}}, {U'"', {39, true}},   {U',', {43, false}},
        {U'<', {43, true}},  {U'.', {47, false}},  {U'>', {47, true}},   {U'/', {44, false}},  {U'?', {44, true}},
        {U'!', {18, true}},  {U'@', {19, true}},   {U'#', {20, true}},   {U'$', {21, true}},   {U'%', {23, true}},
        {U'^', {22, true}},  {U'&', {26, true}},   {U'*', {28, true}},   {U'(', {25, true}},   {U')', {29, true}},
    };
    for (const auto& [c, k] : rest) m[c] = k;
    return m;
}

TEST(KeyCharToKeyCode, NamesAndCharacters) {
    EXPECT_EQ(keyCharToKeyCode("a"), 0);
    EXPECT_EQ(keyCharToKeyCode("A"), 0);
    // The function keys, F1 to F12, as a US keyboard numbers them.
    const KeyCode functionKeys[12] = {122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111};
    for (int f = 1; f <= 12; ++f) {
        EXPECT_EQ(keyCharToKeyCode("f" + std::to_string(f)), functionKeys[f - 1]) << "f" << f;
        EXPECT_EQ(keyCharToKeyCode("F" + std::to_string(f)), functionKeys[f - 1]) << "F" << f;
    }
    EXPECT_EQ(keyCharToKeyCode("LEFT"), 123);
    EXPECT_EQ(keyCharToKeyCode("Left"), 123);
    EXPECT_EQ(keyCharToKeyCode("right"), 124);
    EXPECT_EQ(keyCharToKeyCode("down"), 125);
    EXPECT_EQ(keyCharToKeyCode("uP"), 126);
    EXPECT_EQ(keyCharToKeyCode(" "), 49);
    EXPECT_EQ(keyCharToKeyCode("\n"), 36);
    EXPECT_EQ(keyCharToKeyCode("\t"), 48);
    EXPECT_EQ(keyCharToKeyCode("\b"), 51);
    EXPECT_EQ(keyCharToKeyCode("\x1b"), 53);
    EXPECT_EQ(keyCharToKeyCode("7"), 26);
    // Full Unicode lower-casing: the Kelvin sign lower-cases to "k".
    EXPECT_EQ(keyCharToKeyCode("\u212A"), 40);
}

TEST(KeyCharToKeyCode, UnknownTexts) {
    for (const char* text : {"", "f13", "f0", "ab", "  ", " a", "a ", "return", "enter", "tab", "space", "escape",
                             "delete", "page_up", "!", "+", "home", "end", "pageup", "pagedown", "forwarddelete", "\r", "\r\n", "\xC3\xA9", "\xC4\xB0" /* İ */}) {
        EXPECT_EQ(keyCharToKeyCode(text), std::nullopt) << '"' << text << '"';
    }
    EXPECT_EQ(keyCharToKeyCode(std::string_view("a\0", 2)), std::nullopt);
}

TEST(CharToKeyCode, UntypeableCharacters) {
    for (const char* c : {"\b",
                          "\x1b",
                          "\r",
                          "\r\n",
                          "\xC3\xA9" /* é */,
                          "e\xCC\x81" /* e + acute */,
                          "a\xCC\x81",
                          "b\xCC\x81",
                          "Z\xCC\xA7",
                          "1\xEF\xB8\x8F\xE2\x83\xA3" /* keycap 1 */,
                          "\xC3\x9F" /* ß */,
                          "\xE2\x84\xAA" /* Kelvin sign */,
                          "\xCD\xBE" /* Greek question mark */,
                          "\xE1\xBF\xAF" /* Greek varia */,
                          "\xF0\x9F\x91\x8D\xF0\x9F\x8F\xBD" /* emoji + tone */,
                          "\xF0\x9F\x87\xAB\xF0\x9F\x87\xB7" /* flag */,
                          "\xE2\x82\xAC" /* € */,
                          "",
                          "ab",
                          "\x7F"}) {
        EXPECT_EQ(charToKeyCode(c), std::nullopt) << '"' << c << '"';
    }
}

// Every scalar value, one at a time: exactly the 97 characters of a US
// keyboard have a key, and each the right one.
TEST(CharToKeyCode, ExactlyTheUsKeyboardOverAllScalars) {
    const std::map<char32_t, KeyPress> expected = usKeyboard();
    ASSERT_EQ(expected.size(), 97u);
    int typeable = 0;
    int named = 0;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        const std::string s = utf8(c);
        const auto key = charToKeyCode(s);
        if (key) {
            ++typeable;
            auto it = expected.find(c);
            ASSERT_NE(it, expected.end()) << "U+" << std::hex << static_cast<std::uint32_t>(c);
            EXPECT_EQ(*key, it->second) << "U+" << std::hex << static_cast<std::uint32_t>(c);
        }
        if (keyCharToKeyCode(s)) ++named;
    }
    EXPECT_EQ(typeable, 97);
    // 26 letters in both cases, 10 digits, 16 one-character keys, and the
    // Kelvin sign, which lower-cases to a letter.
    EXPECT_EQ(named, 26 * 2 + 10 + 16 + 1);
}

}  // namespace
}  // namespace zeblo::keyboard

#include "ops/key_codes.h"

#include <array>
#include <string>
#include <utility>

#include "core/unicode.h"

namespace zeblo::keyboard {
namespace {

using Row = std::pair<std::string_view, KeyCode>;

constexpr std::array<Row, 26> letterKeyCodes{{
    {"a", 0},  {"b", 11}, {"c", 8},  {"d", 2},  {"e", 14}, {"f", 3},  {"g", 5},  {"h", 4},  {"i", 34},
    {"j", 38}, {"k", 40}, {"l", 37}, {"m", 46}, {"n", 45}, {"o", 31}, {"p", 35}, {"q", 12}, {"r", 15},
    {"s", 1},  {"t", 17}, {"u", 32}, {"v", 9},  {"w", 13}, {"x", 7},  {"y", 16}, {"z", 6},
}};

constexpr std::array<Row, 10> digitKeyCodes{{
    {"0", 29},
    {"1", 18},
    {"2", 19},
    {"3", 20},
    {"4", 21},
    {"5", 23},
    {"6", 22},
    {"7", 26},
    {"8", 28},
    {"9", 25},
}};

constexpr std::array<Row, 16> specialKeyCodes{{
    {" ", 49},
    {"\n", 36},
    {"\t", 48},
    {"\b", 51},
    {"\x1b", 53},
    {"`", 50},
    {"-", 27},
    {"=", 24},
    {"[", 33},
    {"]", 30},
    {"\\", 42},
    {";", 41},
    {"'", 39},
    {",", 43},
    {".", 47},
    {"/", 44},
}};

constexpr std::array<Row, 12> functionKeyCodes{{
    {"f1", 122},
    {"f2", 120},
    {"f3", 99},
    {"f4", 118},
    {"f5", 96},
    {"f6", 97},
    {"f7", 98},
    {"f8", 100},
    {"f9", 101},
    {"f10", 109},
    {"f11", 103},
    {"f12", 111},
}};

constexpr std::array<Row, 4> arrowKeyCodes{{{"left", 123}, {"right", 124}, {"down", 125}, {"up", 126}}};

// A character typed with Shift, and the text of the unshifted key carrying it.
constexpr std::array<std::pair<std::string_view, std::string_view>, 21> shiftedCharacters{{
    {"!", "1"},  {"@", "2"}, {"#", "3"},  {"$", "4"}, {"%", "5"}, {"^", "6"}, {"&", "7"},
    {"*", "8"},  {"(", "9"}, {")", "0"},  {"_", "-"}, {"+", "="}, {"{", "["}, {"}", "]"},
    {"|", "\\"}, {":", ";"}, {"\"", "'"}, {"<", ","}, {">", "."}, {"?", "/"}, {"~", "`"},
}};

// The special keys typed as they are: all of them but backspace and escape.
constexpr std::array<std::string_view, 14> unshiftedSymbols{
    " ", "\n", "\t", "`", "-", "=", "[", "]", "\\", ";", "'", ",", ".", "/",
};

template <std::size_t N>
std::optional<KeyCode> find(const std::array<Row, N>& table, std::string_view key) {
    for (const auto& [k, code] : table)
        if (k == key) return code;
    return std::nullopt;
}

// The text used to place a character in code point order. A cluster of
// several scalars is brought to its canonical composed form (so "a" with a
// combining acute orders as "á", beyond "z"). A single scalar is compared as
// written: canonical singletons such as the Kelvin sign, whose normal form is
// an ASCII letter, never pass for that letter.
std::u32string orderKey(std::string_view character) {
    std::u32string scalars = text::codePoints(character);
    if (scalars.size() > 1) scalars = text::codePoints(text::composed(character));
    return scalars;
}

bool inRange(const std::u32string& c, char32_t low, char32_t high) {
    return std::u32string(1, low) <= c && c <= std::u32string(1, high);
}

std::optional<KeyPress> press(std::optional<KeyCode> code, bool shift) {
    if (!code) return std::nullopt;
    return KeyPress{*code, shift};
}

}  // namespace

std::optional<KeyCode> keyCharToKeyCode(std::string_view keyText) {
    const std::string lower = text::toLower(keyText);
    if (auto c = find(letterKeyCodes, lower)) return c;
    if (auto c = find(digitKeyCodes, lower)) return c;
    if (auto c = find(specialKeyCodes, lower)) return c;
    if (auto c = find(functionKeyCodes, lower)) return c;
    return find(arrowKeyCodes, lower);
}

std::optional<KeyPress> charToKeyCode(std::string_view c) {
    const std::u32string key = orderKey(c);
    if (inRange(key, U'a', U'z')) return press(keyCharToKeyCode(c), false);
    if (inRange(key, U'A', U'Z')) return press(keyCharToKeyCode(text::toLower(c)), true);
    if (inRange(key, U'0', U'9')) return press(keyCharToKeyCode(c), false);
    for (const auto& [shifted, unshifted] : shiftedCharacters)
        if (c == shifted) return press(keyCharToKeyCode(unshifted), true);
    for (const auto& symbol : unshiftedSymbols)
        if (c == symbol) return press(keyCharToKeyCode(c), false);
    return std::nullopt;
}

}  // namespace zeblo::keyboard

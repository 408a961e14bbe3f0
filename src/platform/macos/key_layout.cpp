#include "platform/macos/key_layout.h"

#include <optional>
#include <utility>

#include "platform/platform.h"

namespace zeblo::platform::macos {

namespace {

struct UsKey {
    std::uint16_t code;
    std::string_view plain;
    std::string_view shifted;
};

// The character keys of a US layout (ANSI virtual key codes).
constexpr std::array<UsKey, 47> kUsKeys{{
    {0, "a", "A"},  {1, "s", "S"},  {2, "d", "D"},   {3, "f", "F"},  {4, "h", "H"},  {5, "g", "G"},   {6, "z", "Z"},
    {7, "x", "X"},  {8, "c", "C"},  {9, "v", "V"},   {11, "b", "B"}, {12, "q", "Q"}, {13, "w", "W"},  {14, "e", "E"},
    {15, "r", "R"}, {16, "y", "Y"}, {17, "t", "T"},  {18, "1", "!"}, {19, "2", "@"}, {20, "3", "#"},  {21, "4", "$"},
    {22, "6", "^"}, {23, "5", "%"}, {24, "=", "+"},  {25, "9", "("}, {26, "7", "&"}, {27, "-", "_"},  {28, "8", "*"},
    {29, "0", ")"}, {30, "]", "}"}, {31, "o", "O"},  {32, "u", "U"}, {33, "[", "{"}, {34, "i", "I"},  {35, "p", "P"},
    {37, "l", "L"}, {38, "j", "J"}, {39, "'", "\""}, {40, "k", "K"}, {41, ";", ":"}, {42, "\\", "|"}, {43, ",", "<"},
    {44, "/", "?"}, {45, "n", "N"}, {46, "m", "M"},  {47, ".", ">"}, {50, "`", "~"},
}};

constexpr std::uint64_t kChordFlags = kEventFlagCommand | kEventFlagControl | kEventFlagOption;

std::size_t preference(std::uint8_t modifiers) {
    for (std::size_t i = 0; i < kLayoutModifierSets.size(); ++i) {
        if (kLayoutModifierSets[i] == modifiers) return i;
    }
    return kLayoutModifierSets.size();
}

// The first key of the table, in the order of preference, that types `text`
// with a modifier set `accepts` takes.
template <class Accepts>
const LayoutKey* find(const LayoutTable& layout, std::string_view text, bool allowDead, Accepts&& accepts) {
    const LayoutKey* best = nullptr;
    for (const LayoutKey& key : layout.keys) {
        if (key.text != text || (key.dead && !allowDead) || !accepts(key.modifiers)) continue;
        if (best == nullptr || preference(key.modifiers) < preference(best->modifiers)) best = &key;
    }
    return best;
}

}  // namespace

std::string_view usCharacter(std::uint16_t keyCode, bool shift) {
    for (const UsKey& key : kUsKeys) {
        if (key.code == keyCode) return shift ? key.shifted : key.plain;
    }
    return {};
}

KeyTranslation translateKey(const LayoutTable& layout, std::uint16_t keyCode, std::uint64_t flags) {
    const std::string_view character = usCharacter(keyCode, (flags & kEventFlagShift) != 0);
    if (character.empty()) return {};
    const bool chord = (flags & kChordFlags) != 0;
    const bool command = (flags & kEventFlagCommand) != 0;

    const LayoutKey* key = nullptr;
    if (command) {
        key = find(layout, character, true, [](std::uint8_t m) { return (m & kLayoutCommand) != 0; });
    }
    if (key == nullptr) {
        key = find(layout, character, chord, [](std::uint8_t m) { return (m & kLayoutCommand) == 0; });
    }
    if (key == nullptr) {
        if (chord) return {};
        return {KeyTranslation::Kind::text, keyCode, flags, std::string(character)};
    }

    // The layout's Shift and Option replace the event's Shift; Option held
    // for a chord stays held.
    std::uint64_t wanted = flags & ~kEventFlagShift;
    if ((key->modifiers & kLayoutShift) != 0) wanted |= kEventFlagShift;
    if ((key->modifiers & kLayoutOption) != 0) wanted |= kEventFlagOption;
    if (key->keyCode == keyCode && wanted == flags) return {};
    return {KeyTranslation::Kind::key, key->keyCode, wanted, chord ? std::string() : std::string(character)};
}

}  // namespace zeblo::platform::macos

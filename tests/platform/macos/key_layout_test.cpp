// The macOS backend's layout translation on recorded tables of macOS's U.S.,
// German, French and Dvorak layouts (layouts/*.tsv).
#include "platform/macos/key_layout.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace {

using namespace zeblo::platform;
using namespace zeblo::platform::macos;
using Kind = KeyTranslation::Kind;

LayoutTable recorded(const std::string& name) {
    std::ifstream in(std::string(ZEBLO_LAYOUTS_DIR) + "/" + name + ".tsv");
    LayoutTable table;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> field;
        std::istringstream fields(line);
        for (std::string f; std::getline(fields, f, '\t');) field.push_back(f);
        const int dead = std::stoi(field.at(5));
        for (int i = 0; i < 4; ++i) {
            table.keys.push_back({static_cast<std::uint16_t>(std::stoi(field[0])), kLayoutModifierSets[i], field[i + 1],
                                  ((dead >> i) & 1) != 0});
        }
    }
    EXPECT_EQ(table.keys.size(), 4u * 48) << name;
    return table;
}

// What the table says a key types with the flags' Shift and Option.
const LayoutKey* typedBy(const LayoutTable& table, std::uint16_t code, std::uint64_t flags) {
    const std::uint8_t modifiers =
        ((flags & kEventFlagShift) ? kLayoutShift : 0) | ((flags & kEventFlagOption) ? kLayoutOption : 0);
    for (const LayoutKey& key : table.keys) {
        if (key.keyCode == code && key.modifiers == modifiers) return &key;
    }
    return nullptr;
}

// Every printable ASCII character typed as the operations type it: its US key
// code, with Shift when the US layout needs it. Returns the characters the
// layout has no live key for (typed as the event's text instead).
std::string typeAll(const LayoutTable& table, bool sameAsUs = false) {
    std::string fallbacks;
    for (std::uint16_t code = 0; code < 128; ++code) {
        for (bool shift : {false, true}) {
            const std::string c(usCharacter(code, shift));
            if (c.empty()) continue;
            const std::uint64_t flags = shift ? kEventFlagShift : 0;
            const KeyTranslation t = translateKey(table, code, flags);
            if (sameAsUs) {
                EXPECT_EQ(t.kind, Kind::unchanged) << c;
            }
            if (t.kind == Kind::text) {
                EXPECT_EQ(t.text, c);
                fallbacks += c;
                continue;
            }
            const bool moved = t.kind == Kind::key;
            const LayoutKey* key = typedBy(table, moved ? t.keyCode : code, moved ? t.flags : flags);
            if (key == nullptr) {
                ADD_FAILURE() << "no key types " << c;
                continue;
            }
            EXPECT_EQ(key->text, c);
            EXPECT_FALSE(key->dead) << c;
            if (moved) {
                EXPECT_EQ(t.text, c);
            }
        }
    }
    return fallbacks;
}

TEST(KeyLayout, EveryCharacterComesOutAsOnAUsLayout) {
    typeAll(recorded("us"), /*sameAsUs=*/true);
    EXPECT_EQ(typeAll(recorded("dvorak")), "");
    // Characters these layouts have only as dead keys are carried as text.
    EXPECT_EQ(typeAll(recorded("german")), "^`~");
    EXPECT_EQ(typeAll(recorded("french")), "^`~");
}

TEST(KeyLayout, TypingUsesTheLayoutsKeysAndModifiers) {
    const LayoutTable german = recorded("german");
    const LayoutTable french = recorded("french");
    // "y" is code 16 under German, "Z" Shift and code 6 would be "Y".
    EXPECT_EQ(translateKey(german, 16, 0).keyCode, 6);
    const KeyTranslation z = translateKey(german, 6, kEventFlagShift);
    EXPECT_EQ(z.keyCode, 16);
    EXPECT_EQ(z.flags, kEventFlagShift);
    // "@" is Option-L under German; French types "1" with Shift, "!" without.
    const KeyTranslation at = translateKey(german, 19, kEventFlagShift);
    EXPECT_EQ(at.keyCode, 37);
    EXPECT_EQ(at.flags, kEventFlagOption);
    EXPECT_EQ(translateKey(french, 18, 0).flags, kEventFlagShift);
    EXPECT_EQ(translateKey(french, 18, kEventFlagShift).flags, 0u);
    // Flags the event has besides Shift (Caps Lock, say) stay.
    EXPECT_EQ(translateKey(german, 16, 0x10000).flags, 0x10000u);
}

TEST(KeyLayout, ChordsPressTheKeyThatTypesTheLetter) {
    const LayoutTable german = recorded("german");
    LayoutTable dvorak = recorded("dvorak");
    // Command-Z under German, the paste chord under Dvorak.
    const KeyTranslation undo = translateKey(german, 6, kEventFlagCommand);
    EXPECT_EQ(undo.kind, Kind::key);
    EXPECT_EQ(undo.keyCode, 16);
    EXPECT_EQ(undo.flags, kEventFlagCommand);
    EXPECT_EQ(undo.text, "");
    EXPECT_EQ(translateKey(dvorak, 9, kEventFlagCommand).keyCode, 47);
    // Command-+ is the German "+" key, without Shift.
    const KeyTranslation plus = translateKey(german, 24, kEventFlagCommand | kEventFlagShift);
    EXPECT_EQ(plus.keyCode, 30);
    EXPECT_EQ(plus.flags, kEventFlagCommand);
    // Option held by the caller stays; a dead key serves a chord.
    EXPECT_EQ(translateKey(german, 16, kEventFlagOption).flags, kEventFlagOption);
    const KeyTranslation grave = translateKey(german, 50, kEventFlagControl);
    EXPECT_EQ(grave.keyCode, 24);
    EXPECT_EQ(grave.flags, kEventFlagControl | kEventFlagShift);
    // "Dvorak - QWERTY Command" types QWERTY letters with Command: V stays V.
    for (std::uint16_t code = 0; code < 51; ++code) {
        const std::string letter(usCharacter(code, false));
        if (!letter.empty()) dvorak.keys.push_back({code, kLayoutCommand, letter, false});
    }
    EXPECT_EQ(translateKey(dvorak, 9, kEventFlagCommand).kind, Kind::unchanged);
}

TEST(KeyLayout, KeysWithoutACharacterAndUnknownCharactersStay) {
    const LayoutTable german = recorded("german");
    // Return, Tab, Space, Delete, Escape, left Shift, F1, left arrow, keypad 1.
    for (std::uint16_t code : {36, 48, 49, 51, 53, 56, 122, 123, 83}) {
        EXPECT_EQ(translateKey(german, code, kEventFlagCommand | kEventFlagShift).kind, Kind::unchanged) << code;
    }
    // A layout without Latin letters: chords stay, typing carries the text.
    const LayoutTable none;
    EXPECT_EQ(translateKey(none, 9, kEventFlagCommand).kind, Kind::unchanged);
    const KeyTranslation a = translateKey(none, 0, 0);
    EXPECT_EQ(a.kind, Kind::text);
    EXPECT_EQ(a.text, "a");
}

}  // namespace

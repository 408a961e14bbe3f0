// Pressing keys by name: "ctrl+shift+t", "home", "pageup", "return", "+",
// several chords separated by blanks ("ctrl+a backspace"). Names map to the
// library's US key codes and modifier flags; the backend types the intended
// character under whatever layout is active.
#include <array>

#include "ops/elements/element_ops.h"
#include "ops/elements/walk.h"
#include "ops/key_codes.h"
#include "ops/lookup.h"

namespace zeblo::elements {

namespace {

struct Named {
    std::string_view name;
    std::uint16_t code;
};

// Keys by name (lower case) beyond the key texts of the keyboard's own table
// (ops/key_codes.h: letters, digits, "f1".."f12", the arrows), which is
// asked first; single characters are typed as that table types them.
constexpr Named kKeys[] = {
    {"return", 36},      {"enter", 36},        {"tab", 48},           {"space", 49},     {"backspace", 51},
    {"escape", 53},      {"esc", 53},          {"delete", 117},       {"del", 117},      {"forwarddelete", 117},
    {"home", 115},       {"end", 119},         {"pageup", 116},       {"pagedown", 121}, {"help", 114},
    {"insert", 114},     {"f13", 105},         {"f14", 107},          {"f15", 113},      {"f16", 106},
    {"f17", 64},         {"plus", 24},         {"minus", 27},         {"comma", 43},     {"period", 47},
    {"slash", 44},       {"backslash", 42},    {"semicolon", 41},     {"quote", 39},     {"grave", 50},
    {"bracketleft", 33}, {"bracketright", 30}, {"equal", 24},
};

struct Chord {
    std::uint16_t code = 0;
    std::uint64_t flags = 0;
};

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return out;
}

std::optional<std::uint64_t> modifierOf(const std::string& name) {
    if (name == "ctrl" || name == "control") return platform::kEventFlagControl;
    if (name == "shift") return platform::kEventFlagShift;
    if (name == "alt" || name == "option" || name == "opt") return platform::kEventFlagOption;
    // Command on macOS; elsewhere the backends press Control for it, so
    // "cmd+s" (or "primary+s") saves everywhere.
    if (name == "cmd" || name == "command" || name == "meta" || name == "super" || name == "primary" ||
        name == "mod") {
        return platform::kEventFlagCommand;
    }
    return std::nullopt;
}

// One chord: modifiers and a key joined by "+"; a "+" key is the last part
// ("ctrl++", "+").
Chord parseChord(std::string_view text) {
    std::vector<std::string_view> parts;
    std::size_t from = 0;
    while (from <= text.size()) {
        std::size_t plus = text.find('+', from);
        if (plus == from && plus + 1 == text.size()) plus = std::string_view::npos;  // the "+" key at the end
        if (plus == std::string_view::npos) {
            parts.push_back(text.substr(from));
            break;
        }
        parts.push_back(text.substr(from, plus - from));
        from = plus + 1;
    }
    Chord chord;
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        const std::optional<std::uint64_t> flag = modifierOf(lower(parts[i]));
        if (!flag) {
            throw ElementError::usage("badKeys", "'" + std::string(parts[i]) + "' in '" + std::string(text) +
                                                     "' is not a modifier (ctrl, shift, alt, cmd)");
        }
        chord.flags |= *flag;
    }
    const std::string_view key = parts.empty() ? std::string_view() : parts.back();
    if (key.size() == 1) {
        if (const std::optional<keyboard::KeyPress> press = keyboard::charToKeyCode(key)) {
            chord.code = press->keyCode;
            // An upper-case letter with other modifiers is their chord on
            // its key: "ctrl+S" is Control-S.
            const bool letter = key[0] >= 'A' && key[0] <= 'Z';
            if (press->needsShift && !(letter && chord.flags != 0)) chord.flags |= platform::kEventFlagShift;
            return chord;
        }
    }
    const std::string name = lower(key);
    if (const std::optional<keyboard::KeyCode> code = keyboard::keyCharToKeyCode(name); code) {
        chord.code = *code;
        return chord;
    }
    for (const Named& k : kKeys) {
        if (k.name != name) continue;
        chord.code = k.code;
        if (name == "plus") chord.flags |= platform::kEventFlagShift;
        return chord;
    }
    throw ElementError::usage("badKeys", "'" + std::string(key) + "' names no key (letters, digits, punctuation, "
                                         "return, tab, space, backspace, delete, escape, home, end, pageup, "
                                         "pagedown, the arrows, f1 to f17)");
}

void post(std::uint16_t code, bool down, std::uint64_t flags) {
    platform::Platform& p = platform::current();
    const platform::Event event = p.createKeyboardEvent(nullptr, code, down);
    if (!event) throw ElementError("action", "keyEventFailed", "Failed to create a keyboard event");
    p.setEventFlags(event, flags);
    p.postEvent(platform::kHIDEventTap, event);
}

}  // namespace

std::string pressKeys(std::string_view appName, std::string_view keys) {
    // Every chord is read before any key is pressed.
    std::vector<Chord> chords;
    std::size_t at = 0;
    while (at < keys.size()) {
        const std::size_t end = std::min(keys.find(' ', at), keys.size());
        if (end > at) chords.push_back(parseChord(keys.substr(at, end - at)));
        at = end + 1;
    }
    if (chords.empty()) throw ElementError::usage("badKeys", "No key given");
    platform::Platform& p = platform::current();
    const std::optional<platform::RunningApp> app =
        lookup::findApp(std::string(appName), lookup::AppMatch::exactThenLoose);
    if (!app) {
        if (appName.empty()) throw ElementError("app", "noFrontmostApp", "No frontmost application");
        throw ElementError("app", "appNotFound",
                           "Application '" + std::string(appName) + "' not found. Check if the app is running.");
    }
    if (!appName.empty()) {
        p.activateApplication(*app, platform::kActivateIgnoringOtherApps);
        p.sleep(0.05);
    }
    for (const Chord& chord : chords) {
        post(chord.code, true, chord.flags);
        post(chord.code, false, chord.flags);
        p.sleep(0.005);
    }
    Json out = Json::object();
    out["ok"] = true;
    out["app"] = app->localizedName.value_or("");
    out["chords"] = chords.size();
    return out.dump();
}

}  // namespace zeblo::elements

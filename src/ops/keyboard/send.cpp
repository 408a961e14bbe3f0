// Single key presses into an application, and global chords of raw key codes.
#include <optional>

#include "ops/keyboard/events.h"
#include "ops/keyboard/keystroke.h"
#include "ops/lookup.h"

namespace zeblo {
namespace {

// The event flags for `send`'s modifier bits; every other bit is ignored.
std::uint64_t flagsForModifiers(std::int64_t modifiers) {
    std::uint64_t flags = 0;
    if (modifiers & 1) flags |= platform::kEventFlagShift;
    if (modifiers & 2) flags |= platform::kEventFlagControl;
    if (modifiers & 4) flags |= platform::kEventFlagOption;
    if (modifiers & 8) flags |= platform::kEventFlagCommand;
    return flags;
}

// The application `send` acts on: the frontmost one for an empty name,
// otherwise the first running application whose name equals `appName`
// exactly (canonically equivalent forms count as equal).
platform::RunningApp targetApplication(const std::string& appName) {
    std::optional<platform::RunningApp> app = lookup::findApp(appName, lookup::AppMatch::exact);
    if (!app) throw appName.empty() ? KeystrokeError::noFrontmostApp() : KeystrokeError::appNotFound(appName);
    return std::move(*app);
}

}  // namespace

void Keystroke::send(const std::string& appName, const std::string& keyChar, std::int64_t modifiers) {
    // The key is checked first: a bad key with an unknown application reports
    // the key. Shifted symbols ("!", "+") name no key here: Shift comes from
    // the modifiers alone.
    const std::optional<keyboard::KeyCode> key = keyCharToKeyCode(keyChar);
    if (!key) throw keystrokeFailure("Invalid key character: " + keyChar);

    platform::Platform& p = platform::current();
    const platform::RunningApp target = targetApplication(appName);
    p.activateApplication(target, 0);  // its answer is not examined
    p.sleep(0.05);

    // The flags are set even when there are none, so the events carry no
    // modifier state of their own.
    const std::uint64_t flags = flagsForModifiers(modifiers);
    const platform::Event down = keyboard::keyEvent(nullptr, *key, true, "Failed to create key down event");
    p.setEventFlags(down, flags);
    keyboard::post(down);

    const platform::Event up = keyboard::keyEvent(nullptr, *key, false, "Failed to create key up event");
    p.setEventFlags(up, flags);
    keyboard::post(up);
}

void Keystroke::sendGlobalKeystroke(const std::vector<std::uint16_t>& keyCodes, std::uint64_t modifierFlags) {
    platform::Platform& p = platform::current();
    const platform::EventSource source = keyboard::hidEventSource();
    if (!source) throw keystrokeFailure("Failed to create event source");

    const auto press = [&](std::uint16_t code, bool down) {
        const platform::Event event = p.createKeyboardEvent(&source, code, down);
        if (!event) {
            throw keystrokeFailure(std::string(down ? "Failed to create key down event for keycode "
                                                    : "Failed to create key up event for keycode ") +
                                   std::to_string(code));
        }
        keyboard::mark(event);
        if (modifierFlags != 0) p.setEventFlags(event, modifierFlags);
        keyboard::post(event);
    };
    for (std::uint16_t code : keyCodes) press(code, true);
    for (auto it = keyCodes.rbegin(); it != keyCodes.rend(); ++it) press(*it, false);
}

}  // namespace zeblo

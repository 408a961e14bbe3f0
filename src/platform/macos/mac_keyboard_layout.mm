// The current keyboard layout as a table for the mapping of key_layout.h,
// read through the input source manager (HIToolbox: TextInputSources.h) and
// UCKeyTranslate (CoreServices: UnicodeUtilities.h).
//
// The input source manager asserts that it runs on the main queue (from
// macOS 14 a call from another thread traps), so the layout is read there.
// Creating a keyboard event also asks it, once, when the system sets up its
// key translation for the process; so the process's first keyboard event is
// made on the main thread too, before any other thread makes one.

#import <Carbon/Carbon.h>

#include <mutex>

#include "platform/macos/mac_platform.h"

namespace zeblo::platform::macos {

namespace {

constexpr UniCharCount kMaxKeyText = 8;

// UCKeyTranslate's modifier state: the Carbon modifier bits shifted right by
// 8 (cmdKey 1, shiftKey 2, optionKey 8).
UInt32 modifierState(std::uint8_t modifiers) {
    UInt32 state = 0;
    if ((modifiers & kLayoutCommand) != 0) state |= 1;
    if ((modifiers & kLayoutShift) != 0) state |= 2;
    if ((modifiers & kLayoutOption) != 0) state |= 8;
    return state;
}

// What `code` types with `modifiers`; a dead key gives its own character.
LayoutKey readKey(const UCKeyboardLayout* layout, UInt32 keyboardType, std::uint16_t code, std::uint8_t modifiers) {
    LayoutKey key{code, modifiers, {}, false};
    UniChar text[kMaxKeyText];
    UniCharCount length = 0;
    UInt32 deadKeyState = 0;
    const auto translate = [&](OptionBits options) {
        return UCKeyTranslate(layout, code, kUCKeyActionDown, modifierState(modifiers), keyboardType, options,
                              &deadKeyState, kMaxKeyText, &length, text) == noErr;
    };
    if (!translate(0)) return key;
    if (length == 0 && deadKeyState != 0) {
        key.dead = true;
        deadKeyState = 0;
        if (!translate(kUCKeyTranslateNoDeadKeysMask)) return key;
    }
    const auto string = ScopedCF<CFStringRef>::adopt(
        CFStringCreateWithCharacters(kCFAllocatorDefault, text, static_cast<CFIndex>(length)));
    key.text = utf8FromCFString(string.get());
    return key;
}

struct LayoutState {
    std::mutex mutex;
    std::shared_ptr<const LayoutTable> table;
    std::string readFor;  // input source id and keyboard type of `table`
    bool eventsAllowed = false;
};

// Never destroyed: a thread may still use it while the process exits.
LayoutState& layoutState() {
    static auto* state = new LayoutState;
    return *state;
}

bool keyboardEventsAllowedOffMain(LayoutState& state) {
    const std::lock_guard lock(state.mutex);
    return state.eventsAllowed;
}

// On the main thread.
void readLayout() {
    LayoutState& state = layoutState();
    if (!keyboardEventsAllowedOffMain(state)) {
        const auto first = ScopedCF<CGEventRef>::adopt(CGEventCreateKeyboardEvent(nullptr, 0, true));
        const std::lock_guard lock(state.mutex);
        state.eventsAllowed = true;
    }
    const auto source = ScopedCF<TISInputSourceRef>::adopt(TISCopyCurrentKeyboardLayoutInputSource());
    if (!source) return;
    const auto hid = ScopedCF<CGEventSourceRef>::adopt(CGEventSourceCreate(kCGEventSourceStateHIDSystemState));
    const UInt32 keyboardType = hid ? CGEventSourceGetKeyboardType(hid.get()) : 0;
    const std::string readFor =
        utf8FromCFString(static_cast<CFStringRef>(TISGetInputSourceProperty(source.get(), kTISPropertyInputSourceID))) +
        "/" + std::to_string(keyboardType);
    {
        const std::lock_guard lock(state.mutex);
        if (state.table != nullptr && state.readFor == readFor) return;
    }
    auto table = std::make_shared<LayoutTable>();
    // An input source without a key layout of its own leaves the table
    // empty: every character is then carried as text.
    if (const auto data =
            static_cast<CFDataRef>(TISGetInputSourceProperty(source.get(), kTISPropertyUnicodeKeyLayoutData))) {
        const auto* layout = reinterpret_cast<const UCKeyboardLayout*>(CFDataGetBytePtr(data));
        for (std::uint16_t code : kLayoutKeyCodes) {
            for (std::uint8_t modifiers : kLayoutModifierSets) {
                LayoutKey key = readKey(layout, keyboardType, code, modifiers);
                if (!key.text.empty()) table->keys.push_back(std::move(key));
            }
        }
    }
    const std::lock_guard lock(state.mutex);
    state.table = std::move(table);
    state.readFor = readFor;
}

}  // namespace

bool refreshKeyboardLayout() {
    return runOnMainThread(^{
      guardedVoid([] { readLayout(); });
    });
}

std::shared_ptr<const LayoutTable> keyboardLayout() {
    LayoutState& state = layoutState();
    const std::lock_guard lock(state.mutex);
    return state.table;
}

bool keyboardEventsAllowed() { return NSThread.isMainThread || keyboardEventsAllowedOffMain(layoutState()); }

}  // namespace zeblo::platform::macos

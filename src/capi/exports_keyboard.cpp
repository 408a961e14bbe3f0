// Exported functions of the keyboard area and their bodies. A null required
// string is read as "" (so a null text types or pastes nothing, and a null key
// is an invalid key); a negative key-code count is read as 0.
#include "capi/bodies.h"
#include "capi/marshal.h"
#include "ops/keyboard/keystroke.h"
#include "zeblo/zeblo.h"

namespace zeblo::capi {

bool sendKeystroke(const char* appName, const char* keyChar, std::int32_t modifiers) noexcept {
    return runLogged("zeblo_send_keystroke", [&] {
        Keystroke::send(decodeString(appName), decodeString(keyChar), static_cast<std::int64_t>(modifiers));
    });
}

bool sendGlobalKeystroke(const std::uint16_t* keyCodes, std::int32_t keyCodesCount,
                         std::uint64_t modifierFlags) noexcept {
    return runLogged("zeblo_send_global_keystroke", [&] {
        Keystroke::sendGlobalKeystroke(copyKeyCodes(keyCodes, keyCodesCount), reduceModifierMask(modifierFlags));
    });
}

bool typeText(const char* text, bool markEvents) noexcept {
    return runLogged("zeblo_type_text", [&] { Keystroke::typeText(decodeString(text), markEvents); });
}

bool pasteText(const char* text) noexcept {
    return runLogged("zeblo_paste_text", [&] { Keystroke::pasteText(decodeString(text)); });
}

bool pasteIntoFocusedField(const char* text, bool sendEnter) noexcept {
    return runLogged("zeblo_paste_into_focused_field",
                     [&] { Keystroke::pasteIntoFocusedField(decodeString(text), sendEnter); });
}

}  // namespace zeblo::capi

extern "C" {

bool zeblo_send_keystroke(const char* appName, const char* keyChar, int32_t modifiers) {
    return zeblo::capi::sendKeystroke(appName, keyChar, modifiers) & 1;
}

bool zeblo_send_global_keystroke(const uint16_t* keyCodes, int32_t keyCodesCount, uint64_t modifierFlags) {
    return zeblo::capi::sendGlobalKeystroke(keyCodes, keyCodesCount, modifierFlags) & 1;
}

bool zeblo_type_text(const char* text, bool markEvents) { return zeblo::capi::typeText(text, markEvents) & 1; }

bool zeblo_paste_text(const char* text) { return zeblo::capi::pasteText(text) & 1; }

bool zeblo_paste_into_focused_field(const char* text, bool sendEnter) {
    return zeblo::capi::pasteIntoFocusedField(text, sendEnter) & 1;
}

}  // extern "C"

// Direct entry into the focused text field through its accessibility value.
#include <array>

#include "ops/keyboard/events.h"
#include "ops/keyboard/keystroke.h"
#include "ops/lookup.h"
#include "platform/ax_names.h"

namespace zeblo {
namespace {

// The roles whose value is set directly, compared exactly.
constexpr std::array<std::string_view, 3> textFieldRoles{ax::kTextFieldRole, ax::kTextAreaRole,
                                                         ax::kSecureTextFieldRole};

bool isTextFieldRole(std::string_view role) {
    for (std::string_view r : textFieldRoles)
        if (r == role) return true;
    return false;
}

}  // namespace

bool Keystroke::setAXValue(const platform::Element& element, const std::string& value) {
    platform::Platform& p = platform::current();
    // Only whether a string came back counts, not the read's result code.
    const platform::Read<std::string> role = platform::asString(p.copyAttributeValue(element, ax::kRoleAttribute));
    if (!role) {
        p.log("setAXValue: Could not get role");
        return false;
    }
    if (!isTextFieldRole(role.value)) {
        p.log("setAXValue: Skipping role '" + role.value + "' - not a text field");
        return false;
    }
    p.log("setAXValue: Found text field with role '" + role.value + "'");

    if (!p.isAttributeSettable(element, ax::kValueAttribute).settable) {
        p.log("setAXValue: AXValue is not settable for role: " + role.value);
        return false;
    }
    const platform::AXError result = p.setAttributeValue(element, ax::kValueAttribute, platform::SetValue(value));
    if (lookup::performed(result)) {
        p.log("setAXValue: Successfully set AXValue for role: " + role.value);
        return true;
    }
    p.log("setAXValue: Failed with error code " + std::to_string(result) + " for role: " + role.value);
    return false;
}

void Keystroke::sendEnterKey() {
    platform::Platform& p = platform::current();
    const platform::EventSource source = keyboard::hidEventSource();
    if (!source) return;
    for (bool down : {true, false}) {
        // A failed creation ends the press silently; a posted key-down stays.
        const platform::Event event = p.createKeyboardEvent(&source, keyboard::kReturnKeyCode, down);
        if (!event) return;
        keyboard::mark(event);
        keyboard::post(event);
    }
}

void Keystroke::pasteIntoFocusedField(const std::string& text, bool sendEnter) {
    platform::Platform& p = platform::current();
    if (!p.isProcessTrusted(true)) throw keystrokeFailure("Accessibility permission not granted");

    // A read that succeeds with nothing usable reports the code 0.
    const lookup::FocusedElement read = lookup::focusedElement();
    if (read.code != platform::kAXErrorSuccess || !read.element) {
        throw keystrokeFailure("Could not get focused element: " + std::to_string(read.code), read.code);
    }
    const platform::Element& focused = read.element;

    bool entered = setAXValue(focused, text);
    if (!entered) {
        // Only direct children are tried, in order, never their children. A
        // null entry of the list is passed over.
        platform::Read<std::vector<platform::Element>> children =
            platform::asElementArray(p.copyAttributeValue(focused, ax::kChildrenAttribute));
        if (children) {
            for (const platform::Element& child : children.value) {
                if (child && setAXValue(child, text)) {
                    entered = true;
                    break;
                }
            }
        }
    }
    if (!entered) throw keystrokeFailure("Could not set value on focused element");
    if (sendEnter) sendEnterKey();
}

}  // namespace zeblo

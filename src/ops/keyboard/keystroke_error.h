// The errors of the keyboard area: `KeystrokeError`, whose cases carry no
// texts of their own, and the keystroke failures, error objects of the domain
// "Keystroke" whose description is their message.
#pragma once

#include <cstdint>
#include <string>

#include "core/error.h"

namespace zeblo {

class KeystrokeError : public TypedError {
public:
    enum class Case { appNotFound = 0, noFrontmostApp = 1, invalidModifiers = 2 };

    // The application name exactly as the caller gave it.
    static KeystrokeError appNotFound(std::string name) {
        return KeystrokeError(Case::appNotFound, "appNotFound", std::move(name));
    }
    static KeystrokeError noFrontmostApp() { return KeystrokeError(Case::noFrontmostApp, "noFrontmostApp"); }
    // Kept for completeness: unknown modifier bits are ignored, never refused.
    static KeystrokeError invalidModifiers() { return KeystrokeError(Case::invalidModifiers, "invalidModifiers"); }

    Case kind() const noexcept { return case_; }
    const std::string& name() const noexcept { return payload(); }  // appNotFound only

private:
    KeystrokeError(Case c, const char* caseName)
        : TypedError("KeystrokeError", static_cast<int>(c), caseName), case_(c) {}
    KeystrokeError(Case c, const char* caseName, std::string name)
        : TypedError("KeystrokeError", static_cast<int>(c), caseName, std::move(name)), case_(c) {}
    Case case_;
};

// The error domain of keystroke failures.
inline constexpr const char* kKeystrokeDomain = "Keystroke";

// A keystroke failure with `message` as its description. Every failure uses
// the code -1 except the focused-element one, which carries the accessibility
// result code.
MessageError keystrokeFailure(std::string message, std::int64_t code = -1);

}  // namespace zeblo

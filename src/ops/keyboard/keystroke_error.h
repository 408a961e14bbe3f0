// The errors of the keyboard area: `KeystrokeError`, whose cases carry no
// texts of their own, and the keystroke failures, error objects of the domain
// "Keystroke" whose description is their message.
#pragma once

#include <cstdint>
#include <string>

#include "core/error.h"

namespace zeblo {

// The cases in declaration order: a case's number is part of the descriptions
// the host sees.
inline constexpr ErrorCase kKeystrokeErrorCases[] = {
    {"appNotFound", "application not found"},
    {"noFrontmostApp", "no frontmost application"},
    {"invalidModifiers", "invalid modifiers"},  // never raised: unknown modifier bits are ignored
};
inline constexpr ErrorKind kKeystrokeError{"KeystrokeError", kKeystrokeErrorCases};

class KeystrokeError : public TypedError {
public:
    // The application name exactly as the caller gave it.
    static KeystrokeError appNotFound(std::string name) { return {Case::appNotFound, std::move(name)}; }
    static KeystrokeError noFrontmostApp() { return KeystrokeError(Case::noFrontmostApp); }

    const std::string& name() const noexcept { return payload(); }  // appNotFound only

private:
    enum class Case { appNotFound, noFrontmostApp };
    explicit KeystrokeError(Case c) : TypedError(kKeystrokeError, static_cast<int>(c)) {}
    KeystrokeError(Case c, std::string name) : TypedError(kKeystrokeError, static_cast<int>(c), std::move(name)) {}
};

// The error domain of keystroke failures.
inline constexpr const char* kKeystrokeDomain = "Keystroke";

// A keystroke failure with `message` as its description. Every failure uses
// the code -1 except the focused-element one, which carries the accessibility
// result code.
MessageError keystrokeFailure(std::string message, std::int64_t code = -1);

}  // namespace zeblo

// The errors of the windows area. Unlike the other typed errors each case has
// texts of its own: the description the host sees (`description()`) and a
// shorter text used only by the window-buttons export (`shortText()`); the
// rendering of case and payload for diagnostic lines is the common one
// (`debugText()`, e.g. `appNotFound("Nope")` or `timeout`).
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

// The cases in declaration order (their texts are in window_error.cpp).
inline constexpr ErrorCase kWindowErrorCases[] = {
    {"appNotFound", "application not found"},
    {"windowNotFound", "window not found"},
    {"buttonNotFound", "button not found"},
    {"checkboxNotFound", "check box not found"},
    {"noFrontmostApp", "no frontmost application"},
    {"clickFailed", "the press failed"},
    {"closeFailed", "closing failed"},
    {"timeout", "timed out"},
};
inline constexpr ErrorKind kWindowError{"WindowError", kWindowErrorCases};

class WindowError : public TypedError {
public:
    static WindowError appNotFound(std::string name) { return {Case::appNotFound, std::move(name)}; }
    static WindowError windowNotFound(std::string name) { return {Case::windowNotFound, std::move(name)}; }
    // A window not found because the application did not answer (a read timed
    // out): the same error to the host, but the window may well be there.
    static WindowError windowUnanswered(std::string name) {
        WindowError e(Case::windowNotFound, std::move(name));
        e.unanswered_ = true;
        return e;
    }
    static WindowError buttonNotFound(std::string name) { return {Case::buttonNotFound, std::move(name)}; }
    static WindowError checkboxNotFound(std::string name) { return {Case::checkboxNotFound, std::move(name)}; }
    static WindowError noFrontmostApp() { return WindowError(Case::noFrontmostApp); }
    static WindowError clickFailed() { return WindowError(Case::clickFailed); }
    static WindowError closeFailed() { return WindowError(Case::closeFailed); }
    static WindowError timeout() { return WindowError(Case::timeout); }

    // The name that was looked for; empty for the cases without one.
    const std::string& name() const noexcept { return payload(); }
    // Whether the application left a read of the lookup unanswered.
    bool unanswered() const noexcept { return unanswered_; }

    std::string description() const override;
    // The short form written by zeblo_get_window_buttons, e.g.
    // "Window 'Prefs' not found".
    std::string shortText() const;

private:
    enum class Case {
        appNotFound,
        windowNotFound,
        buttonNotFound,
        checkboxNotFound,
        noFrontmostApp,
        clickFailed,
        closeFailed,
        timeout,
    };
    explicit WindowError(Case c) : TypedError(kWindowError, static_cast<int>(c)) {}
    WindowError(Case c, std::string name) : TypedError(kWindowError, static_cast<int>(c), std::move(name)) {}
    bool unanswered_ = false;
};

}  // namespace zeblo

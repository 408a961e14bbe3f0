// The errors of the windows area. Each case carries the text the host sees
// (`description()`), a shorter text used only by the window-buttons export
// (`shortText()`), and a rendering of case and payload for diagnostic lines
// (`debugText()`, e.g. `appNotFound("Nope")` or `timeout`).
#pragma once

#include <string>

#include "core/error.h"

namespace zeblo {

class WindowError : public Error {
public:
    enum class Case {
        appNotFound = 0,
        windowNotFound = 1,
        buttonNotFound = 2,
        checkboxNotFound = 3,
        noFrontmostApp = 4,
        clickFailed = 5,
        closeFailed = 6,
        timeout = 7,
    };

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

    Case kind() const noexcept { return case_; }
    // The name that was looked for; empty for the cases without one.
    const std::string& name() const noexcept { return name_; }
    // Whether the application left a read of the lookup unanswered.
    bool unanswered() const noexcept { return unanswered_; }

    std::string description() const override;
    std::string debugText() const override;
    // The short form written by zeblo_get_window_buttons, e.g.
    // "Window 'Prefs' not found".
    std::string shortText() const;

private:
    WindowError(Case c, std::string name = {}) : case_(c), name_(std::move(name)) {}
    Case case_;
    std::string name_;
    bool unanswered_ = false;
};

}  // namespace zeblo

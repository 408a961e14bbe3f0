// The lookups every area of operations shares: choosing a running application
// by name, the frontmost application with its focused window's title, and the
// element that has the keyboard focus. Each area keeps its own errors; these
// functions report absence and leave the throwing to the caller.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace zeblo::lookup {

// How a given application name is matched against the localized names of the
// running applications, always in the workspace's order. Each area resolves
// names its own way, and the differences are part of its behaviour.
enum class AppMatch {
    exact,           // canonically equal names (menus, keystrokes)
    exactThenLoose,  // an identical name anywhere, else the first loose match (windows)
    loose,           // the first loose match
    looseVisible,    // the first loose match among shown, regular applications
};

// The application `name` names under `match`; for an empty name the frontmost
// application. Nothing when there is none.
std::optional<platform::RunningApp> findApp(std::string_view name, AppMatch match);

// The loose name match: both sides lower-cased and stripped of white space,
// then equal, or the candidate contains the wanted text.
bool softMatch(std::string_view candidate, std::string_view wanted);

// The frontmost application's name and its focused window's title; an unknown
// value is the empty string.
struct FrontmostInfo {
    std::string appName;
    std::string windowTitle;
};

// Nothing when no application is in front.
std::optional<FrontmostInfo> frontmostInfo();

// The system-wide element's "AXFocusedUIElement": the element, or a null one
// with the read's result code (0 when the read succeeded with nothing usable).
struct FocusedElement {
    platform::AXError code = platform::kAXErrorFailure;
    platform::Element element;
};
FocusedElement focusedElement();

// Whether an action or a written value reached the application: it answered
// success, or it gave no answer within the platform's reply limit
// (kAXErrorCannotComplete). An action without an answer has been delivered
// and is running: a button whose press opens a modal dialog holds its reply
// until the dialog closes. It counts as performed and is neither sent again
// nor followed by another action.
inline bool performed(platform::AXError code) {
    return code == platform::kAXErrorSuccess || code == platform::kAXErrorCannotComplete;
}

}  // namespace zeblo::lookup

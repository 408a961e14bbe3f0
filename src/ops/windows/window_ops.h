// Operations on the windows of other applications and the controls inside
// them: finding an application and one of its windows by name, walking a
// window's element tree for controls and text, pressing buttons and
// checkboxes, reading popup menus, and waiting for and closing windows.
//
// Stateless: every operation looks the application and the window up afresh.
// Errors are thrown as WindowError and caught by the exported functions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ops/windows/element_search.h"
#include "ops/windows/window_error.h"
#include "platform/platform.h"

namespace zeblo {

class TextLines;

class WindowOps {
public:
    WindowOps() = delete;

    // Limits shared by every walk of a window's element tree.
    static constexpr int kMaxDepth = 49;                    // deepest level examined
    static constexpr std::size_t kMaxChildren = 9'999;      // larger child lists are not entered
    static constexpr std::size_t kMaxResults = 1'000;       // collected titles and text lines

    // --- Tree walks (never throw on unreadable attributes) -----------------
    // Each walk is given the elements it is inside (`inside`, empty at the
    // window, restored on return): a child that is one of them is not
    // entered, so a tree that loops back ends like any other.

    // The first element in pre-order, at most kMaxDepth levels down, whose
    // role is `role` exactly and whose title matches `name` loosely; null when
    // there is none.
    static platform::Element findElement(const platform::Element& in, std::string_view role, std::string_view name,
                                         windows::Trail& inside);
    // Appends the non-empty titles of the elements of role `role`, in
    // pre-order, until `into` holds kMaxResults entries.
    static void collectElements(const platform::Element& in, std::string_view role, std::vector<std::string>& into,
                                windows::Trail& inside);
    // The titles of all titled buttons under `window`.
    static std::vector<std::string> getAllButtons(const platform::Element& window);
    // Appends the labelled text lines of `from` and its descendants.
    static void collectText(const platform::Element& from, TextLines& into, windows::Trail& inside);
    // The non-empty titles of a menu's items.
    static std::vector<std::string> getMenuItems(const platform::Element& menu);

    // --- Controls -----------------------------------------------------------

    static void clickButton(const std::string& appName, const std::string& windowName,
                            const std::string& buttonName);
    static void clickCheckbox(const std::string& appName, const std::string& windowName,
                              const std::string& checkboxName);
    // Writes `value` into the checkbox's "AXValue" as a number.
    static void setCheckboxValue(const std::string& appName, const std::string& windowName,
                                 const std::string& checkboxName, std::int32_t value);
    static std::vector<std::string> getWindowButtons(const std::string& appName, const std::string& windowName);
    // The button titles as a JSON array, or an error object made from a
    // WindowError's short text; logs its progress line by line. Throws only
    // when memory runs out.
    static std::string getWindowButtonsJSON(const std::string& appName, const std::string& windowName);

    // --- Reading ------------------------------------------------------------

    static std::vector<std::string> getWindowText(const std::string& appName, const std::string& windowName);
    static std::vector<std::string> getPopupMenuItems(const std::string& appName, const std::string& windowName,
                                                      const std::string& popupName);
    // Loose application match only; every failure gives an empty list.
    static std::vector<std::string> getWindowTitles(const std::string& appName);

    // --- Explaining a control not found ---------------------------------------
    // Called, when one is installed, with what a control lookup looked for
    // and did not find, before the lookup's error is thrown. The superset
    // library installs one that tells a hidden match apart; the plain library
    // none.
    using MissedControl = void (*)(const std::string& appName, const std::string& windowName,
                                   std::string_view role, const std::string& name);
    static void onMissedControl(MissedControl hook) noexcept;

    // --- Window state ---------------------------------------------------------

    static bool windowExists(const std::string& appName, const std::string& windowName);
    // condition 0: exists, 1: gone, 2: in front; timeout in milliseconds.
    static bool waitForWindow(const std::string& appName, const std::string& windowName,
                              std::int32_t condition, std::int32_t timeout);
    // Presses the window's close button once, or, with a retry timeout in
    // milliseconds, every 0.1 s until the window is gone.
    static void closeWindow(const std::string& appName, const std::string& windowName,
                            std::optional<std::int64_t> retryTimeout);

private:
    // Empty name: the frontmost application. Exact pass, then loose pass.
    static platform::RunningApp getApp(const std::string& appName);
    // Empty name: the first window. Logs every step.
    static platform::Element getWindow(const platform::RunningApp& app, const std::string& windowName);
    // The window of the application, both looked up as above.
    static platform::Element findWindow(const std::string& appName, const std::string& windowName);
    // The window's first control of `role` whose title matches `name`
    // loosely; throws the lookup's errors, or `missing(name)` when there is
    // no such control.
    static platform::Element findControl(const std::string& appName, const std::string& windowName,
                                         std::string_view role, const std::string& name,
                                         WindowError (*missing)(std::string));
    // One close attempt: look up, read the close button, press it.
    static void closeOnce(const std::string& appName, const std::string& windowName);
    // Whether the application and the window are both found now; `unknown`
    // when the application left a read of the lookup unanswered, so that
    // neither "there" nor "gone" can be told.
    enum class Presence { found, gone, unknown };
    static Presence presence(const std::string& appName, const std::string& windowName);
    static bool windowInFront(const std::string& appName, const std::string& windowName);
};

}  // namespace zeblo

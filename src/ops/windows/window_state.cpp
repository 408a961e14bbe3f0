// Window titles, existence, waiting for a window and closing it. Waiting and
// retrying poll on the calling thread with fixed sleeps, looking the
// application and window up afresh on every poll.
#include "ops/lookup.h"
#include "ops/windows/window_ops.h"
#include "platform/ax_names.h"
#include "platform/deadline.h"

namespace zeblo {

using platform::Element;

namespace {

constexpr double kWaitInterval = 0.05;
constexpr double kCloseRetryInterval = 0.1;

}  // namespace

std::vector<std::string> WindowOps::getWindowTitles(const std::string& appName) {
    platform::Platform& p = platform::current();
    // Loose match only: the first application in the workspace's order.
    const std::optional<platform::RunningApp> app = lookup::findApp(appName, lookup::AppMatch::loose);
    if (!app) return {};

    const Element appElement = p.createApplicationElement(app->pid);
    auto windows = platform::asElementArray(p.copyAttributeValue(appElement, ax::kWindowsAttribute));
    std::vector<std::string> titles;
    if (!windows.ok() || windows.value.size() > kMaxChildren) return titles;
    for (const Element& window : windows.value) {
        if (!window) continue;
        auto title = platform::asString(p.copyAttributeValue(window, ax::kTitleAttribute));
        if (title.ok()) titles.push_back(std::move(title.value));  // "" for an untitled window
    }
    return titles;
}

bool WindowOps::windowExists(const std::string& appName, const std::string& windowName) {
    return presence(appName, windowName) == Presence::found;
}

bool WindowOps::windowInFront(const std::string& appName, const std::string& windowName) {
    const std::optional<lookup::FrontmostInfo> front = lookup::frontmostInfo();
    if (!front) return false;  // nothing in front: not yet
    const bool appHolds = appName.empty() || lookup::softMatch(front->appName, appName);
    const bool windowHolds = windowName.empty() || lookup::softMatch(front->windowTitle, windowName);
    return appHolds && windowHolds;
}

bool WindowOps::waitForWindow(const std::string& appName, const std::string& windowName, std::int32_t condition,
                              std::int32_t timeout) {
    if (static_cast<std::uint32_t>(condition) >= 3) return false;
    const platform::Deadline deadline(timeout);
    if (deadline.passed()) return false;

    platform::Platform& p = platform::current();
    for (;;) {
        bool holds = false;
        switch (condition) {
            case 0: holds = presence(appName, windowName) == Presence::found; break;
            // An application that does not answer has not shown the window gone.
            case 1: holds = presence(appName, windowName) == Presence::gone; break;
            default: holds = windowInFront(appName, windowName); break;
        }
        if (holds) return true;
        p.sleep(kWaitInterval);
        // Not checked again after the sleep on which the time ran out.
        if (deadline.passed()) return false;
    }
}

void WindowOps::closeOnce(const std::string& appName, const std::string& windowName) {
    const Element window = findWindow(appName, windowName);
    platform::Platform& p = platform::current();
    // A close button of the wrong kind counts as none.
    auto button = platform::asElement(p.copyAttributeValue(window, ax::kCloseButtonAttribute));
    if (!button.ok()) throw WindowError::closeFailed();
    // Whether the window really went is not checked here.
    if (!lookup::performed(p.performAction(button.value, ax::kPressAction))) throw WindowError::closeFailed();
}

void WindowOps::closeWindow(const std::string& appName, const std::string& windowName,
                            std::optional<std::int64_t> retryTimeout) {
    if (!retryTimeout) {
        closeOnce(appName, windowName);
        return;
    }

    platform::Platform& p = platform::current();
    const platform::Deadline deadline(*retryTimeout);
    while (!deadline.passed()) {
        // The application going away takes the window with it: success. One
        // that does not answer is neither pressed nor taken for closed.
        const Presence now = presence(appName, windowName);
        if (now == Presence::gone) return;
        if (now == Presence::found) {
            try {
                closeOnce(appName, windowName);
            } catch (const WindowError&) {
                // A refused attempt is tried again on the next poll.
            }
        }
        p.sleep(kCloseRetryInterval);
    }
    if (presence(appName, windowName) == Presence::gone) return;
    throw WindowError::timeout();
}

}  // namespace zeblo

// Operations on the menu bars of other applications: a snapshot of a whole
// menu bar, choosing an item by its path of titles, and whether an item is
// enabled. An item is named by an application name (exact, or empty for the
// frontmost application) and the titles from the menu bar down. Stateless:
// every call reads the accessibility tree afresh, on the caller's thread, and
// nothing opens a menu, presses an intermediate item or waits.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ops/menus/menu_error.h"
#include "platform/platform.h"

namespace zeblo {

class MenuOps {
public:
    MenuOps() = delete;

    // The whole menu bar as pretty-printed JSON, {"app": NAME, "menus": [...]},
    // or the one-line {"app": "NAME", "menus": []} when the menu bar gives no
    // item list. Throws MenuError (noFrontmostApp, appNotFound,
    // menuBarNotFound).
    static std::string getAppMenusJSON(const std::string& appName);

    // Finds the item and performs its action ("AXPress", then "AXPick").
    // Throws MenuError.
    static void menuClick(const std::string& appName, const std::vector<std::string>& menuPath);

    // Whether the item is there; false on every failure.
    static bool menuItemExists(const std::string& appName, const std::vector<std::string>& menuPath);

    // Whether the item reports itself enabled; false on every failure.
    static bool menuItemEnabled(const std::string& appName, const std::vector<std::string>& menuPath);

private:

    // The application a menu operation targets, and its menu bar.
    struct Target {
        std::int32_t pid = 0;
        std::optional<std::string> localizedName;
        platform::Element menuBar;
    };

    // The exactly named running application (the first of equal names), or
    // the frontmost one for an empty name, with its menu bar. Throws
    // MenuError (noFrontmostApp, appNotFound, menuBarNotFound).
    static Target resolveApplication(platform::Platform& p, const std::string& appName);

    // The first child of `element` titled exactly `title`, looking through a
    // single untitled container layer; null when there is none. Never throws.
    static platform::Element findChildByTitle(const platform::Element& element, const std::string& title);

    // The element of the path's last title. Throws MenuError.
    static platform::Element navigateToMenuItem(const std::string& appName,
                                                const std::vector<std::string>& menuPath);

    // Presses the item, or picks it when the press is refused; logs the
    // item's actions and throws MenuError::menuClickFailed when both are.
    static void executeMenuItem(const platform::Element& element);
};

}  // namespace zeblo

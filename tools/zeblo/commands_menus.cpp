// Commands of the menus area. A menu path is given as one argument per title,
// from the menu bar down.
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

namespace {

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

// The titles after the application name, as the C array the exports take.
struct MenuPath {
    explicit MenuPath(const Args& args) {
        for (std::size_t i = 1; i < args.values.size(); ++i) titles.push_back(args.values[i].c_str());
    }
    const char* const* data() const { return titles.data(); }
    std::int32_t count() const { return static_cast<std::int32_t>(titles.size()); }
    std::vector<const char*> titles;
};

}  // namespace

void addMenuCommands(Commands& commands) {
    commands.push_back({"menus", "[APP]", 0, 1, {}, [](const Args& a) {
                            return printString(zeblo_get_app_menus(a.values.empty() ? "" : a.values[0].c_str()));
                        }});
    commands.push_back({"menu-click", "APP TITLE...", 2, kAny, {}, [](const Args& a) {
                            const MenuPath path(a);
                            return printBool(zeblo_menu_click(a.values[0].c_str(), path.data(), path.count()));
                        }});
    commands.push_back({"menu-exists", "APP TITLE...", 2, kAny, {}, [](const Args& a) {
                            const MenuPath path(a);
                            return printBool(zeblo_menu_item_exists(a.values[0].c_str(), path.data(), path.count()));
                        }});
    commands.push_back({"menu-enabled", "APP TITLE...", 2, kAny, {}, [](const Args& a) {
                            const MenuPath path(a);
                            return printBool(zeblo_menu_item_enabled(a.values[0].c_str(), path.data(), path.count()));
                        }});
}

}  // namespace zeblo::cli

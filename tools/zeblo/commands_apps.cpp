// Commands of the applications area.
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

void addAppCommands(Commands& commands) {
    commands.push_back({"frontmost", "", 0, 0, {}, [](const Args&) { return printString(zeblo_get_frontmost_info()); }});
    commands.push_back({"apps", "", 0, 0, {}, [](const Args&) { return printString(zeblo_get_running_apps()); }});
    commands.push_back({"focus", "APP WINDOW SWITCH LAUNCH TIMEOUT", 5, 5, {}, [](const Args& a) {
                            const auto& v = a.values;
                            const bool shouldSwitch = parseSwitch(v[2]);
                            const bool shouldLaunch = parseSwitch(v[3]);
                            const std::int32_t timeout = parseInt32(v[4]);
                            return printBool(zeblo_focus_app(v[0].c_str(), v[1].c_str(), shouldSwitch,
                                                             shouldLaunch, timeout));
                        }});
    commands.push_back({"launch", "APP", 1, 1, {}, [](const Args& a) {
                            return printBool(zeblo_launch_app(a.values[0].c_str()));
                        }});
    commands.push_back({"in-text-field", "", 0, 0, {}, [](const Args&) { return printBool(zeblo_is_in_text_field()); }});
}

}  // namespace zeblo::cli

// Commands of the applications area.
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

void addAppCommands(Commands& commands) {
    commands.push_back({"frontmost", "", 0, 0, {}, [](const Args&) { return printString(zeblo_get_frontmost_info()); }});
    commands.push_back({"apps", "", 0, 0, {}, [](const Args&) { return printString(zeblo_get_running_apps()); }});
}

}  // namespace zeblo::cli

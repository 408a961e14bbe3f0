// Commands of the menus area.
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

void addMenuCommands(Commands& commands) { (void)commands; }

}  // namespace zeblo::cli

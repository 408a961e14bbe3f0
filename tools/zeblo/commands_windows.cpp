// Commands of the windows area.
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

void addWindowCommands(Commands& commands) { (void)commands; }

}  // namespace zeblo::cli

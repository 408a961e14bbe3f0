// Commands of the keyboard area.
#include "cli.h"
#include "zeblo/zeblo.h"

namespace zeblo::cli {

void addKeyboardCommands(Commands& commands) { (void)commands; }

}  // namespace zeblo::cli

// The system log as the real backends and the simulated library write it:
// syslog, and standard error as well when ZEBLO_LOG_STDERR is "1".
#pragma once

#include <string_view>

namespace zeblo::platform {

void writeSystemLog(std::string_view line);

}  // namespace zeblo::platform

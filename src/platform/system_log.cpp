#include "platform/system_log.h"

#include <syslog.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zeblo::platform {

void writeSystemLog(std::string_view line) {
    const std::string text(line);
    syslog(LOG_INFO, "%s", text.c_str());  // the line is text, never a format
    if (const char* echo = std::getenv("ZEBLO_LOG_STDERR"); echo != nullptr && *echo == '1') {
        std::fprintf(stderr, "%s\n", text.c_str());
    }
}

}  // namespace zeblo::platform

// The applications registered on the accessibility bus, read in two round
// trips however many there are: the registry's child list in one call, then
// every application's process id, name and child count in one batch.
#pragma once

#include <atspi/atspi.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

struct ListedApp {
    std::string busName;
    std::string path;
    std::int32_t pid = 0;             // 0: the bus did not tell
    std::optional<std::string> name;  // none: not asked for, or the application did not answer
    std::int32_t childCount = -1;     // -1: likewise
};

// The registry's applications in its order; empty when it does not answer.
// Their names and child counts are asked for only `withNames`: the process
// ids come from the bus itself, without waiting on any application.
std::vector<ListedApp> listApplications(bool withNames);

// The accessible object of `listed`, which stood at `index` of the list, with
// its own reference; null when it has gone.
AccessibleRef applicationObject(const ListedApp& listed, std::size_t index);

}  // namespace zeblo::platform::linux_desktop

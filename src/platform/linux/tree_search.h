// Searches under an element for toolkits without the Collection interface
// (Qt): breadth first, with each level's roles, states and child lists asked
// for in one batch of D-Bus calls.
#pragma once

#include <atspi/atspi.h>

#include <cstdint>
#include <functional>

#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

// What a search knows of one element: its role and states (bit n set:
// AtspiStateType n).
struct Glance {
    AtspiRole role = ATSPI_ROLE_INVALID;
    std::uint64_t states = 0;
    bool has(AtspiStateType state) const { return ((states >> state) & 1) != 0; }
};

// The first element under `root` (nearest first, then in child order) that
// `wanted` accepts, or null. Only the children of elements that `descend`
// accepts are searched (the root's always are); an element met again (a
// child list that leads back) is not searched twice. At most 32 levels and
// 4096 elements are read.
AccessibleRef searchTree(AtspiAccessible* root, const std::function<bool(const Glance&)>& wanted,
                         const std::function<bool(const Glance&)>& descend);

// Searches the same elements as searchTree, all of them, and gives the one
// that `wanted` ranks highest (a rank of 0 is not wanted; of equal ranks the
// first met, the nearest to the root), or null.
AccessibleRef searchBest(AtspiAccessible* root, const std::function<int(const Glance&)>& wanted,
                         const std::function<bool(const Glance&)>& descend);

}  // namespace zeblo::platform::linux_desktop

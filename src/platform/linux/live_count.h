// A count of the backend's objects alive: element nodes, key events and
// surveys. Between two operations it is zero, since nothing is kept after a
// call returns; the end-to-end tests check that after every test.
#pragma once

#include <atomic>

namespace zeblo::platform::linux_desktop {

inline std::atomic<int> gLiveObjects{0};

// A member that counts its owner.
struct Counted {
    Counted() noexcept { gLiveObjects.fetch_add(1, std::memory_order_relaxed); }
    Counted(const Counted&) noexcept : Counted() {}
    Counted& operator=(const Counted&) noexcept = default;
    ~Counted() { gLiveObjects.fetch_sub(1, std::memory_order_relaxed); }
};

inline int liveObjects() noexcept { return gLiveObjects.load(std::memory_order_relaxed); }

}  // namespace zeblo::platform::linux_desktop

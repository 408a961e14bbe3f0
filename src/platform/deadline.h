// A time limit measured on the platform's clock from the moment it is made.
#pragma once

#include <cmath>
#include <cstdint>

#include "platform/platform.h"

namespace zeblo::platform {

class Deadline {
public:
    // `milliseconds` from now; zero or less has already passed.
    explicit Deadline(std::int64_t milliseconds)
        : start_(current().now()), limitNanos_(milliseconds * 1'000'000) {}

    // Whether the elapsed time is no longer less than the limit. The elapsed
    // seconds are compared in whole nanoseconds, so that a clock whose
    // readings are exact decimals (the simulated one) is not tripped by the
    // rounding of the subtraction.
    bool passed() const {
        const double elapsed = current().now() - start_;
        return std::llround(elapsed * 1e9) >= limitNanos_;
    }

private:
    double start_;
    std::int64_t limitNanos_;
};

}  // namespace zeblo::platform

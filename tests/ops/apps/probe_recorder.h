// A platform that forwards every operation to a simulated desktop and notes
// the virtual time of each frontmost-application query, so that tests can see
// exactly when a polling loop probed.
#pragma once

#include <optional>
#include <vector>

#include "support/forwarding_platform.h"

namespace zeblo::testing {

class ProbeRecorder final : public ForwardingPlatform {
public:
    using ForwardingPlatform::ForwardingPlatform;

    // Virtual times (seconds) of the frontmost queries, in order.
    const std::vector<double>& probes() const { return probes_; }

    std::optional<platform::RunningApp> frontmostApplication() override {
        probes_.push_back(target().clock());
        return ForwardingPlatform::frontmostApplication();
    }

private:
    std::vector<double> probes_;
};

}  // namespace zeblo::testing

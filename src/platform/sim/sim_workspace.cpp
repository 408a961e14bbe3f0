// The simulated desktop's workspace: the running applications, the
// frontmost one, launching and activating.
#include <algorithm>

#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;

namespace {

platform::RunningApp toRunning(const SimApp& a) { return {a.name, a.pid, a.hidden, a.policy}; }

}  // namespace

std::optional<platform::RunningApp> SimDesktop::frontmostApplication() {
    std::lock_guard lock(impl_->mu);
    if (!impl_->frontmost) return std::nullopt;
    SimApp* app = impl_->findApp(*impl_->frontmost);
    if (app == nullptr) return std::nullopt;
    return toRunning(*app);
}

std::vector<platform::RunningApp> SimDesktop::runningApplications() {
    std::lock_guard lock(impl_->mu);
    std::vector<platform::RunningApp> out;
    out.reserve(impl_->apps.size());
    for (const auto& a : impl_->apps) out.push_back(toRunning(a));
    return out;
}

bool SimDesktop::launchApplication(std::string_view name) {
    std::lock_guard lock(impl_->mu);
    auto& launchable = impl_->launchable;
    auto it = std::find_if(launchable.begin(), launchable.end(), [&](const auto& l) { return l.first == name; });
    bool accepted = false;
    if (it != launchable.end()) {
        impl_->apps.push_back(std::move(it->second));
        launchable.erase(it);
        accepted = true;
    } else {
        accepted = std::any_of(impl_->apps.begin(), impl_->apps.end(),
                               [&](const SimApp& a) { return a.name && *a.name == name; });
    }
    impl_->record(Json{{"launch", traceText(name)}, {"accepted", accepted}});
    return accepted;
}

bool SimDesktop::activateApplication(const platform::RunningApp& app, std::uint64_t options) {
    std::lock_guard lock(impl_->mu);
    SimApp* running = impl_->findApp(app.pid);
    bool accepted = running != nullptr && running->activate;
    if (accepted) impl_->frontmost = app.pid;
    impl_->record(Json{{"activate", app.pid}, {"options", options}, {"accepted", accepted}});
    return accepted;
}

}  // namespace zeblo::sim

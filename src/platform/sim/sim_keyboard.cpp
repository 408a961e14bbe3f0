// The simulated desktop's keyboard events: sources and events as counted
// handles, injected failures, and every posted event in the trace.
#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;

namespace {

SimEvent* eventOf(const platform::Platform* self, const platform::Event& e) {
    return e.owner() == self ? static_cast<SimEvent*>(e.raw()) : nullptr;
}

}  // namespace

platform::EventSource SimDesktop::createEventSource(std::int32_t /*stateId*/) {
    std::lock_guard lock(impl_->mu);
    if (impl_->eventSourceFails) return {};
    auto* source = new SimEvent;
    source->isSource = true;
    ++impl_->liveHandles;
    return platform::EventSource::adopt(this, source);
}

platform::Event SimDesktop::createKeyboardEvent(const platform::EventSource* /*source*/, std::uint16_t keyCode,
                                                bool keyDown) {
    std::lock_guard lock(impl_->mu);
    int number = ++impl_->keyboardEventCount;
    if (impl_->failingKeyboardEvents.count(number) != 0) return {};
    auto* event = new SimEvent;
    event->keyCode = keyCode;
    event->down = keyDown;
    ++impl_->liveHandles;
    return platform::Event::adopt(this, event);
}

void SimDesktop::setEventFlags(const platform::Event& event, std::uint64_t flags) {
    SimEvent* e = eventOf(this, event);
    if (e == nullptr) return;
    std::lock_guard lock(impl_->mu);
    e->flags = flags;
}

void SimDesktop::setEventIntegerField(const platform::Event& event, std::uint32_t field, std::int64_t value) {
    SimEvent* e = eventOf(this, event);
    if (e == nullptr || field != kMarkerField) return;
    std::lock_guard lock(impl_->mu);
    e->marker = value;
}

void SimDesktop::postEvent(std::uint32_t /*tap*/, const platform::Event& event) {
    SimEvent* e = eventOf(this, event);
    if (e == nullptr) return;
    std::lock_guard lock(impl_->mu);
    Json rec;
    rec["key"] = e->keyCode;
    rec["down"] = e->down;
    rec["flags"] = e->flags ? Json(*e->flags) : Json(nullptr);
    rec["marker"] = e->marker ? Json(*e->marker) : Json(nullptr);
    impl_->record(std::move(rec));
}

}  // namespace zeblo::sim

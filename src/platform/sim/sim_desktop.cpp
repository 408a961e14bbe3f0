// The simulated desktop: its state and construction, the building API, the
// clock, the log and the counting of handles. Beside it: the accessibility
// operations (sim_elements.cpp), the keyboard events (sim_keyboard.cpp), the
// workspace (sim_workspace.cpp), the pasteboard (sim_pasteboard.cpp), the
// timeline (sim_timeline.cpp), the trace (sim_trace.cpp) and the desktop
// format (sim_loader.cpp, sim_format.cpp).
#include <algorithm>
#include <cmath>

#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;

Attr* Node::findAttr(std::string_view name) {
    for (auto& [key, value] : attrs)
        if (key == name) return &value;
    return nullptr;
}

void Node::setAttr(std::string name, Attr value) {
    if (Attr* a = findAttr(name)) {
        *a = std::move(value);
    } else {
        attrs.emplace_back(std::move(name), std::move(value));
    }
}

// --- State -------------------------------------------------------------------

Node* SimDesktop::Impl::makeNode(std::string id) {
    arena.push_back(std::make_unique<Node>());
    Node* n = arena.back().get();
    if (!id.empty()) byId.emplace(id, n);  // the first node of an id keeps it
    n->id = std::move(id);
    return n;
}

Node* SimDesktop::Impl::findNode(std::string_view id) const {
    auto it = byId.find(std::string(id));
    return it == byId.end() ? nullptr : it->second;
}

Node* SimDesktop::Impl::deadElement() {
    if (deadNode == nullptr) {
        deadNode = makeNode({});
        deadNode->dead = true;
    }
    return deadNode;
}

SimApp* SimDesktop::Impl::findApp(std::int32_t pid) {
    for (auto& app : apps)
        if (app.pid == pid) return &app;
    return nullptr;
}

// --- Construction and building -------------------------------------------------

SimDesktop::SimDesktop() : impl_(std::make_unique<Impl>()) {}
SimDesktop::~SimDesktop() = default;

Node* SimDesktop::newNode(std::string id) {
    std::lock_guard lock(impl_->mu);
    return impl_->makeNode(std::move(id));
}

Node* SimDesktop::node(std::string_view id) {
    std::lock_guard lock(impl_->mu);
    return impl_->findNode(id);
}

SimApp& SimDesktop::addApp(SimApp app) {
    std::lock_guard lock(impl_->mu);
    return impl_->apps.emplace_back(std::move(app));
}

std::vector<SimApp>& SimDesktop::apps() { return impl_->apps; }

void SimDesktop::setFrontmost(std::optional<std::int32_t> pid) {
    std::lock_guard lock(impl_->mu);
    impl_->frontmost = pid;
}

void SimDesktop::setSystemWide(Node* element) {
    std::lock_guard lock(impl_->mu);
    impl_->systemWide = element;
}

void SimDesktop::addLaunchable(std::string name, SimApp app) {
    std::lock_guard lock(impl_->mu);
    impl_->launchable.emplace_back(std::move(name), std::move(app));
}

void SimDesktop::setTrusted(bool trusted) {
    std::lock_guard lock(impl_->mu);
    impl_->trusted = trusted;
}

void SimDesktop::setPasteboardReadable(bool readable) {
    std::lock_guard lock(impl_->mu);
    impl_->pasteboardReadable = readable;
}

void SimDesktop::setPasteboard(std::vector<SimPasteboardItem> items) {
    std::lock_guard lock(impl_->mu);
    impl_->pasteboard = std::move(items);
}

void SimDesktop::setEventSourceFails(bool fails) {
    std::lock_guard lock(impl_->mu);
    impl_->eventSourceFails = fails;
}

void SimDesktop::setFailingKeyboardEvents(std::set<int> numbers) {
    std::lock_guard lock(impl_->mu);
    impl_->failingKeyboardEvents = std::move(numbers);
}

void SimDesktop::resetEventCount() {
    std::lock_guard lock(impl_->mu);
    impl_->keyboardEventCount = 0;
}

void SimDesktop::setRecording(bool on) {
    std::lock_guard lock(impl_->mu);
    impl_->recording = on;
}

void SimDesktop::setLogSink(std::function<void(std::string_view)> sink) {
    std::lock_guard lock(impl_->mu);
    impl_->logSink = std::move(sink);
}

void SimDesktop::setTraceSink(std::function<void(const nlohmann::ordered_json&)> sink) {
    std::lock_guard lock(impl_->mu);
    impl_->traceSink = std::move(sink);
}

int SimDesktop::liveHandles() const { return impl_->liveHandles.load(); }

double SimDesktop::clock() const {
    std::lock_guard lock(impl_->mu);
    return static_cast<double>(impl_->clockMicros) / 1e6;
}

// --- Clock and log -------------------------------------------------------------

void SimDesktop::sleep(double seconds) {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"sleep", seconds}});
    // Nonsense durations (negative, not a number) leave the clock; a huge one
    // is capped so that the clock cannot overflow.
    if (std::isfinite(seconds) && seconds > 0)
        impl_->clockMicros += std::llround(std::min(seconds, 1e9) * 1e6);
    impl_->applyDueChanges();
}

double SimDesktop::now() { return clock(); }

void SimDesktop::writeLog(std::string_view line) {
    std::function<void(std::string_view)> sink;
    {
        std::lock_guard lock(impl_->mu);
        impl_->record(Json{{"log", traceText(line)}});
        sink = impl_->logSink;
    }
    if (sink) sink(line);
}

// --- Handles -------------------------------------------------------------------

void SimDesktop::retainHandle(platform::HandleKind kind, void* raw) noexcept {
    ++impl_->liveHandles;
    if (kind != platform::HandleKind::element) static_cast<SimEvent*>(raw)->refs.fetch_add(1);
}

void SimDesktop::releaseHandle(platform::HandleKind kind, void* raw) noexcept {
    --impl_->liveHandles;
    if (kind != platform::HandleKind::element) {
        auto* e = static_cast<SimEvent*>(raw);
        if (e->refs.fetch_sub(1) == 1) delete e;
    }
}

}  // namespace zeblo::sim

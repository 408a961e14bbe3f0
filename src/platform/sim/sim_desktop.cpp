// The simulated desktop: construction, the building API, the timeline, the
// workspace, keyboard events, the pasteboard, the clock, the log and handle
// counting. The accessibility operations are in sim_elements.cpp.
#include <algorithm>
#include <cmath>

#include "platform/ax_names.h"
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

void SimDesktop::Impl::waitUnanswered(const Node* n, std::int64_t micros) {
    record(Json{{"unanswered", static_cast<double>(micros) / 1e6},
                {"element", n->id.empty() ? Json(nullptr) : Json(n->id)}});
    clockMicros += micros;
    applyDueChanges();
}

void SimDesktop::Impl::applyDueChanges() {
    std::vector<TimelineChange> later;
    for (auto& change : timeline) {
        if (change.atMicros <= clockMicros) {
            applyChange(change);
        } else {
            later.push_back(std::move(change));
        }
    }
    timeline = std::move(later);
}

namespace {

std::vector<Node*>* windowsOf(SimApp& app) {
    if (app.element == nullptr) return nullptr;
    Attr* a = app.element->findAttr(ax::kWindowsAttribute);
    return a == nullptr ? nullptr : std::get_if<std::vector<Node*>>(a);
}

}  // namespace

void SimDesktop::Impl::applyChange(const TimelineChange& change) {
    const Json& c = change.change;
    if (auto it = c.find("frontmost"); it != c.end()) {
        frontmost = it->is_null() ? std::nullopt : std::optional(it->get<std::int32_t>());
    } else if (auto it = c.find("addWindow"); it != c.end()) {
        SimApp* app = findApp((*it)["pid"].get<std::int32_t>());
        if (app == nullptr || change.element == nullptr) return;
        if (app->element == nullptr) app->element = makeNode({});
        if (auto* windows = windowsOf(*app)) {
            windows->push_back(change.element);
        } else {
            app->element->setAttr(ax::kWindowsAttribute, std::vector<Node*>{change.element});
        }
    } else if (auto it = c.find("removeWindow"); it != c.end()) {
        Node* gone = findNode(it->get<std::string>());
        for (auto& app : apps)
            if (auto* windows = windowsOf(app)) std::erase(*windows, gone);
    } else if (auto it = c.find("removeApp"); it != c.end()) {
        auto pid = it->get<std::int32_t>();
        std::erase_if(apps, [pid](const SimApp& a) { return a.pid == pid; });
        if (frontmost == pid) frontmost.reset();
    } else if (c.contains("addApp") && change.app) {
        apps.push_back(*change.app);
    } else if (auto it = c.find("hangApp"); it != c.end()) {
        if (SimApp* app = findApp((*it)["pid"].get<std::int32_t>()))
            app->hungMicros = std::llround((*it)["seconds"].get<double>() * 1e6);
    } else if (auto it = c.find("resumeApp"); it != c.end()) {
        if (SimApp* app = findApp(it->get<std::int32_t>())) app->hungMicros = 0;
    }
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

void SimDesktop::addTimelineChange(TimelineChange change) {
    std::lock_guard lock(impl_->mu);
    if (change.element == nullptr && !change.app) {
        Json& j = change.change;
        if (j.is_object() && !j.contains("at")) j["at"] = static_cast<double>(change.atMicros) / 1e6;
        change = buildChange(*impl_, std::move(j), "timeline change");
    }
    impl_->timeline.push_back(std::move(change));
    impl_->applyDueChanges();
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

// --- Keyboard events -----------------------------------------------------------

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

platform::Event SimDesktop::createKeyboardEvent(const platform::EventSource* /*source*/,
                                                std::uint16_t keyCode, bool keyDown) {
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

// --- Workspace -----------------------------------------------------------------

namespace {

platform::RunningApp toRunning(const SimApp& a) {
    return {a.name, a.pid, a.hidden, a.policy};
}

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

// --- Pasteboard ----------------------------------------------------------------

bool SimDesktop::canReadPasteboard() {
    std::lock_guard lock(impl_->mu);
    return impl_->pasteboardReadable;
}

std::optional<std::vector<platform::PasteboardItem>> SimDesktop::pasteboardItems() {
    std::lock_guard lock(impl_->mu);
    std::vector<platform::PasteboardItem> out;
    out.reserve(impl_->pasteboard.size());
    for (const auto& item : impl_->pasteboard) out.push_back({item.entries});
    return out;
}

void SimDesktop::clearPasteboard() {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "clear"}});
    impl_->pasteboard.clear();
}

bool SimDesktop::setPasteboardString(std::string_view text, std::string_view type) {
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "setString"}, {"type", traceText(type)}, {"text", traceText(text)}});
    SimPasteboardItem item;
    item.entries.emplace_back(std::string(type), platform::Bytes(text.begin(), text.end()));
    impl_->pasteboard.push_back(std::move(item));
    return true;
}

bool SimDesktop::writePasteboardItems(const std::vector<platform::PasteboardItem>& items) {
    std::vector<SimPasteboardItem> added;
    added.reserve(items.size());
    for (const auto& item : items) added.push_back({item.entries});
    std::lock_guard lock(impl_->mu);
    impl_->record(Json{{"pasteboard", "write"}, {"items", pasteboardJson(added)}});
    for (auto& item : added) impl_->pasteboard.push_back(std::move(item));
    return true;
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

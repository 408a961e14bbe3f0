// The simulated desktop's timeline: changes that come due as the virtual
// clock passes their time (a window appears or goes, an application starts,
// ends, hangs or answers again), and the time a call without a reply lets
// pass.
#include <cmath>

#include "platform/ax_names.h"
#include "platform/sim/sim_state.h"

namespace zeblo::sim {

using Json = nlohmann::ordered_json;

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

}  // namespace zeblo::sim

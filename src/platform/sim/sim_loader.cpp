// Reading a desktop document (docs/desktop-format.md): its applications,
// the system-wide element, the pasteboard, the failures and the timeline,
// their elements built by the format's builder (sim_format.h).
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "platform/sim/sim_format.h"

namespace zeblo::sim {
namespace {

using namespace format;

// An application whose element is built later.
struct AppDraft {
    SimApp app;
    const Json* element = nullptr;
    std::string where;
};

AppDraft readApp(Json& j, const std::string& where, Builder& b, const std::string* launchName = nullptr) {
    requireObject(j, where, "an application object");
    AppDraft d;
    d.where = where + ".element";
    bool hasPid = false;
    if (launchName != nullptr && !j.contains("name")) d.app.name = *launchName;
    for (auto& [key, v] : j.items()) {
        const std::string at = where + "." + key;
        if (key == "name") {
            if (!v.is_null()) d.app.name = stringOf(v, at);
        } else if (key == "pid") {
            d.app.pid = pidOf(v, at);
            hasPid = true;
        } else if (key == "hidden") {
            d.app.hidden = boolOf(v, at);
        } else if (key == "policy") {
            d.app.policy = integerOf(v, at, std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max(), "an activation policy integer");
        } else if (key == "activate") {
            d.app.activate = boolOf(v, at);
        } else if (key == "hung") {
            d.app.hungMicros = hungMicrosOf(v, at);
        } else if (key == "element") {
            if (!v.is_null()) {
                b.collect(v, d.where);
                d.element = &v;
            }
        } else {
            fail(at, "unknown application key (expected name, pid, hidden, policy, activate, element)");
        }
    }
    if (!hasPid) fail(where, "an application needs a \"pid\"");
    return d;
}

SimApp finish(AppDraft& d, const Builder& b) {
    if (d.element != nullptr) d.app.element = b.resolve(*d.element, d.where);
    return std::move(d.app);
}

// A timeline change, checked; its element (if any) is collected into `b`.
struct ChangeDraft {
    TimelineChange change;
    std::optional<AppDraft> app;
    const Json* window = nullptr;
    std::string where;
};

ChangeDraft readChange(Json j, const std::string& where, Builder& b) {
    requireObject(j, where, "a timeline object");
    ChangeDraft d;
    d.where = where;
    auto at = j.find("at");
    if (at == j.end() || !at->is_number()) fail(where, "a timeline change needs a number \"at\" (seconds)");
    double secs = at->get<double>();
    if (!std::isfinite(secs) || std::fabs(secs) > 1e12) fail(where + ".at", "time out of range");
    d.change.atMicros = std::llround(secs * 1e6);
    if (j.size() != 2) fail(where, "a timeline change has \"at\" and exactly one change");
    d.change.change = std::move(j);
    Json& c = d.change.change;
    auto it = c.begin();
    if (it.key() == "at") ++it;  // "at" and the change may come in either order
    const std::string kind = it.key();
    Json& v = it.value();
    const std::string vat = where + "." + kind;
    if (kind == "frontmost") {
        if (!v.is_null()) pidOf(v, vat);
    } else if (kind == "addWindow") {
        requireObject(v, vat, "{\"pid\": PID, \"window\": ELEMENT}");
        if (v.size() != 2 || !v.contains("pid") || !v.contains("window"))
            fail(vat, "expected exactly {\"pid\": PID, \"window\": ELEMENT}");
        pidOf(v["pid"], vat + ".pid");
        b.collect(v["window"], vat + ".window");
        d.window = &v["window"];
    } else if (kind == "removeWindow") {
        stringOf(v, vat);
    } else if (kind == "removeApp") {
        pidOf(v, vat);
    } else if (kind == "addApp") {
        d.app = readApp(v, vat, b);
    } else if (kind == "hangApp") {
        requireObject(v, vat, "{\"pid\": PID, \"seconds\": SECONDS}");
        if (v.size() != 2 || !v.contains("pid") || !v.contains("seconds"))
            fail(vat, "expected exactly {\"pid\": PID, \"seconds\": SECONDS}");
        pidOf(v["pid"], vat + ".pid");
        if (v["seconds"].is_null() || hungMicrosOf(v["seconds"], vat + ".seconds") == 0)
            fail(vat + ".seconds", "expected a number of seconds above 0 and at most 3600, got null");
    } else if (kind == "resumeApp") {
        pidOf(v, vat);
    } else {
        fail(vat, "unknown timeline change (expected frontmost, addWindow, removeWindow, removeApp, addApp)");
    }
    return d;
}

TimelineChange finish(ChangeDraft& d, SimDesktop::Impl& state, const Builder& b) {
    const Json& c = d.change.change;
    if (d.window != nullptr) d.change.element = b.resolve(*d.window, d.where + ".addWindow.window");
    if (d.app) d.change.app = finish(*d.app, b);
    if (auto it = c.find("removeWindow"); it != c.end() && state.findNode(it->get<std::string>()) == nullptr)
        fail(d.where + ".removeWindow", "unknown element id \"" + it->get<std::string>() + "\"");
    return std::move(d.change);
}

SimPasteboardItem readItem(const Json& j, const std::string& where) {
    requireObject(j, where, "a pasteboard item (an object of type → data)");
    SimPasteboardItem item;
    for (const auto& [type, v] : j.items()) {
        const std::string at = where + "." + type;
        if (v.is_null()) {
            item.entries.emplace_back(type, std::nullopt);
        } else if (v.is_string()) {
            const auto& s = v.get_ref<const std::string&>();
            item.entries.emplace_back(type, platform::Bytes(s.begin(), s.end()));
        } else if (v.is_object() && v.size() == 1 && v.contains("base64")) {
            auto bytes = base64Decode(stringOf(v["base64"], at + ".base64"));
            if (!bytes) fail(at + ".base64", "not valid base64");
            item.entries.emplace_back(type, std::move(*bytes));
        } else {
            fail(at, "expected text, {\"base64\": \"...\"} or null" + got(v));
        }
    }
    return item;
}

}  // namespace

TimelineChange buildChange(SimDesktop::Impl& state, Json change, const std::string& where) {
    Builder b(state);
    auto d = readChange(std::move(change), where, b);
    b.fill();
    return finish(d, state, b);
}

std::shared_ptr<SimDesktop> SimDesktop::fromJson(std::string_view text) {
    Json doc;
    try {
        doc = Json::parse(text.begin(), text.end());
    } catch (const nlohmann::json::exception& e) {
        throw DesktopFormatError(std::string("the desktop is not valid JSON: ") + e.what());
    }
    requireObject(doc, "desktop", "an object at the top level");
    auto desk = std::make_shared<SimDesktop>();
    Impl& s = *desk->impl_;
    Builder b(s);
    std::vector<AppDraft> apps;
    std::vector<std::pair<std::string, AppDraft>> launchable;
    std::vector<ChangeDraft> changes;
    const Json* systemWide = nullptr;

    for (auto& [key, v] : doc.items()) {
        if (key == "apps") {
            if (!v.is_array()) fail(key, "expected an array of applications" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                apps.push_back(readApp(v[i], "apps[" + std::to_string(i) + "]", b));
        } else if (key == "frontmost") {
            if (!v.is_null()) s.frontmost = pidOf(v, key);
        } else if (key == "launchable") {
            requireObject(v, key, "an object of name → application");
            for (auto& [name, app] : v.items())
                launchable.emplace_back(name, readApp(app, "launchable." + name, b, &name));
        } else if (key == "systemWide") {
            if (!v.is_null()) {
                b.collect(v, key);
                systemWide = &v;
            }
        } else if (key == "trusted") {
            s.trusted = boolOf(v, key);
        } else if (key == "pasteboardReadable") {
            s.pasteboardReadable = boolOf(v, key);
        } else if (key == "pasteboard") {
            if (!v.is_array()) fail(key, "expected an array of items" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                s.pasteboard.push_back(readItem(v[i], "pasteboard[" + std::to_string(i) + "]"));
        } else if (key == "failures") {
            requireObject(v, key, "an object");
            for (const auto& [fk, fv] : v.items()) {
                if (fk == "eventSource") {
                    s.eventSourceFails = boolOf(fv, "failures.eventSource");
                } else if (fk == "keyboardEvents") {
                    if (!fv.is_array()) fail("failures.keyboardEvents", "expected an array of integers" + got(fv));
                    for (std::size_t i = 0; i < fv.size(); ++i)
                        s.failingKeyboardEvents.insert(static_cast<int>(
                            integerOf(fv[i], "failures.keyboardEvents[" + std::to_string(i) + "]", 1,
                                      std::numeric_limits<int>::max(), "a positive event number")));
                } else {
                    fail("failures." + fk, "unknown failure (expected eventSource, keyboardEvents)");
                }
            }
        } else if (key == "timeline") {
            if (!v.is_array()) fail(key, "expected an array of changes" + got(v));
            for (std::size_t i = 0; i < v.size(); ++i)
                changes.push_back(readChange(std::move(v[i]), "timeline[" + std::to_string(i) + "]", b));
        } else {
            fail(key, "unknown key (expected apps, frontmost, launchable, systemWide, trusted, pasteboard, "
                      "pasteboardReadable, failures, timeline)");
        }
    }

    b.fill();
    for (auto& d : apps) s.apps.push_back(finish(d, b));
    for (auto& [name, d] : launchable) s.launchable.emplace_back(name, finish(d, b));
    if (systemWide != nullptr) s.systemWide = b.resolve(*systemWide, "systemWide");
    for (auto& d : changes) s.timeline.push_back(finish(d, s, b));
    s.applyDueChanges();
    return desk;
}

std::shared_ptr<SimDesktop> SimDesktop::fromFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw DesktopFormatError("cannot open the desktop file " + path);
    std::ostringstream text;
    text << in.rdbuf();
    try {
        return fromJson(text.str());
    } catch (const DesktopFormatError& e) {
        throw DesktopFormatError(path + ": " + e.what());
    }
}

}  // namespace zeblo::sim

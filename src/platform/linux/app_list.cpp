// The registry's application list and the batch that completes it.
#include "platform/linux/app_list.h"

#include <algorithm>
#include <fstream>
#include <unordered_set>

#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"
#include "platform/reply_limit.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";

}  // namespace

std::string programName(std::int32_t pid) {
    if (pid <= 0) return {};
    const std::string proc = "/proc/" + std::to_string(pid);
    std::ifstream cmdline(proc + "/cmdline");
    std::string name;
    std::getline(cmdline, name, '\0');
    name = name.substr(name.rfind('/') + 1);
    if (name.empty()) std::getline(std::ifstream(proc + "/comm"), name);
    return name;
}

int AppMemory::waitFor(const std::string& busName) const {
    const auto found = entries_.find(busName);
    const bool silent = found != entries_.end() && found->second.silent;
    return std::min(replyLimitMs(), silent ? kSilentWaitMs : kListWaitMs);
}

const AppMemory::Entry& AppMemory::answered(const std::string& busName, std::string name, std::int32_t childCount) {
    Entry& entry = entries_[busName];
    entry.name = std::move(name);
    entry.childCount = childCount;
    entry.silent = false;
    return entry;
}

const AppMemory::Entry& AppMemory::unanswered(const std::string& busName, std::int32_t pid) {
    const auto [at, added] = entries_.try_emplace(busName);
    if (added) at->second.name = programName(pid);
    at->second.silent = true;
    return at->second;
}

void AppMemory::keepOnly(const std::vector<ListedApp>& listed) {
    std::unordered_set<std::string> names;
    for (const ListedApp& app : listed) names.insert(app.busName);
    std::erase_if(entries_, [&](const auto& entry) { return names.count(entry.first) == 0; });
}

AppMemory::Entry* AppMemory::find(const std::string& busName) {
    const auto found = entries_.find(busName);
    return found != entries_.end() ? &found->second : nullptr;
}

std::vector<Message> toolkitCalls(const std::string& busName) {
    std::vector<Message> calls;
    for (const char* property : {"ToolkitName", "Version"}) {
        calls.push_back(
            propertyCall(busName.c_str(), ATSPI_DBUS_PATH_ROOT, "org.a11y.atspi.Application", property));
    }
    return calls;
}

void AppMemory::wake(const std::vector<ListedApp>& listed) {
    // Three calls an application: its root's attributes, its toolkit's name
    // and version.
    std::vector<Message> calls;
    std::vector<Entry*> woken;
    for (const ListedApp& app : listed) {
        const auto found = entries_.find(app.busName);
        if (found == entries_.end() || found->second.silent || found->second.woken) continue;
        found->second.woken = true;
        woken.push_back(&found->second);
        calls.push_back(methodCall(app.busName.c_str(), app.path.c_str(), kAccessible, "GetAttributes"));
        for (Message& call : toolkitCalls(app.busName)) calls.push_back(std::move(call));
    }
    if (calls.empty()) return;
    const std::vector<int> limits(calls.size(), std::min(replyLimitMs(), kListWaitMs));
    const std::vector<Message> answers = callAll(atspi_get_a11y_bus(), calls, limits);
    for (std::size_t i = 0; i < woken.size(); ++i) {
        const char* toolkit = stringAnswer(answers[3 * i + 1]);
        const char* version = stringAnswer(answers[3 * i + 2]);
        if (toolkit == nullptr) continue;
        woken[i]->toolkit.emplace(toolkit, version != nullptr ? version : "");
        if (std::string_view(toolkit) == "Chromium") chromiumWoken_ = true;
    }
}

std::vector<ListedApp> listApplications(AppMemory* memory) {
    const bool withNames = memory != nullptr;
    // The registry (the desktop object) on the accessibility bus.
    DBusConnection* bus = atspi_get_a11y_bus();
    std::vector<Message> listCall;
    listCall.push_back(methodCall(ATSPI_DBUS_NAME_REGISTRY, ATSPI_DBUS_PATH_ROOT, kAccessible, "GetChildren"));
    const auto references = referencesAnswer(callAll(bus, listCall).front());
    std::vector<ListedApp> apps;
    if (!references) return apps;
    for (const auto& [busName, path] : *references) {
        ListedApp& app = apps.emplace_back();
        app.busName = busName;
        app.path = path;
    }

    // Up to three calls an application: its connection's process, its name
    // and its child count.
    const std::size_t perApp = withNames ? 3 : 1;
    std::vector<Message> calls;
    std::vector<int> limits;
    calls.reserve(apps.size() * perApp);
    for (const ListedApp& app : apps) {
        const int wait = withNames ? memory->waitFor(app.busName) : replyLimitMs();
        limits.insert(limits.end(), perApp, wait);
        Message pid = methodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID");
        const char* name = app.busName.c_str();
        if (pid && !dbus_message_append_args(pid.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID)) pid.reset();
        calls.push_back(std::move(pid));
        if (!withNames) continue;
        calls.push_back(propertyCall(name, app.path.c_str(), kAccessible, "Name"));
        calls.push_back(propertyCall(name, app.path.c_str(), kAccessible, "ChildCount"));
    }
    const std::vector<Message> answers = callAll(bus, calls, limits);
    for (std::size_t i = 0; i < apps.size(); ++i) {
        const Message* answer = &answers[perApp * i];
        dbus_uint32_t pid = 0;
        if (uint32Answer(answer[0], &pid)) apps[i].pid = static_cast<std::int32_t>(pid);
        if (!withNames) continue;
        const char* name = stringAnswer(answer[1]);  // D-Bus strings are valid UTF-8
        dbus_int32_t count = 0;
        const AppMemory::Entry& entry = name != nullptr && int32Answer(answer[2], &count)
                                            ? memory->answered(apps[i].busName, name, count)
                                            : memory->unanswered(apps[i].busName, apps[i].pid);
        apps[i].name = entry.name;
        apps[i].childCount = entry.childCount;
    }
    if (withNames) {
        memory->keepOnly(apps);
        memory->wake(apps);
    }
    return apps;
}

AccessibleRef applicationObject(const ListedApp& listed, std::size_t index) {
    const AccessibleRef desktop = AccessibleRef::adopt(atspi_get_desktop(0));
    if (!desktop) return {};
    // Where it stood a moment ago, normally; otherwise wherever it stands now.
    const auto isListed = [&](const AccessibleRef& app) {
        return app && busOf(app.get()) != nullptr && listed.busName == busOf(app.get());
    };
    Error error;
    AccessibleRef at =
        AccessibleRef::adopt(atspi_accessible_get_child_at_index(desktop.get(), static_cast<gint>(index), out(error)));
    if (isListed(at)) return at;
    at.reset();
    for (AccessibleRef& app : childrenOf(desktop.get())) {
        if (isListed(app)) return std::move(app);
    }
    return {};
}

}  // namespace zeblo::platform::linux_desktop

// The registry's application list and the batch that completes it.
#include "platform/linux/app_list.h"

#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";

}  // namespace

std::vector<ListedApp> listApplications(bool withNames) {
    AtspiAccessible* desktop = atspi_get_desktop(0);
    if (desktop == nullptr) return {};
    const AtspiObject* registry = ATSPI_OBJECT(desktop);
    DBusConnection* bus = registry->app != nullptr ? registry->app->bus : nullptr;
    std::vector<Message> listCall;
    listCall.push_back(methodCall(busOf(desktop), registry->path, kAccessible, "GetChildren"));
    const auto references = referencesAnswer(callAll(bus, listCall).front());
    g_object_unref(desktop);
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
    calls.reserve(apps.size() * perApp);
    for (const ListedApp& app : apps) {
        Message pid = methodCall("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID");
        const char* name = app.busName.c_str();
        if (pid && !dbus_message_append_args(pid.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID)) pid.reset();
        calls.push_back(std::move(pid));
        if (!withNames) continue;
        calls.push_back(propertyCall(name, app.path.c_str(), kAccessible, "Name"));
        calls.push_back(propertyCall(name, app.path.c_str(), kAccessible, "ChildCount"));
    }
    const std::vector<Message> answers = callAll(bus, calls);
    for (std::size_t i = 0; i < apps.size(); ++i) {
        const Message* answer = &answers[perApp * i];
        dbus_uint32_t pid = 0;
        if (uint32Answer(answer[0], &pid)) apps[i].pid = static_cast<std::int32_t>(pid);
        if (!withNames) continue;
        const char* name = stringAnswer(answer[1]);
        dbus_int32_t count = 0;
        if (name != nullptr && int32Answer(answer[2], &count)) {
            apps[i].name = std::string(name);  // D-Bus strings are valid UTF-8
            apps[i].childCount = count;
        }
    }
    return apps;
}

AtspiAccessible* applicationObject(const ListedApp& listed, std::size_t index) {
    AtspiAccessible* desktop = atspi_get_desktop(0);
    if (desktop == nullptr) return nullptr;
    // Where it stood a moment ago, normally; otherwise wherever it stands now.
    const auto isListed = [&](AtspiAccessible* app) { return busOf(app) != nullptr && listed.busName == busOf(app); };
    AtspiAccessible* found = nullptr;
    GError* error = nullptr;
    AtspiAccessible* at = atspi_accessible_get_child_at_index(desktop, static_cast<gint>(index), &error);
    if (error != nullptr) g_error_free(error);
    if (at != nullptr && isListed(at)) {
        found = at;
    } else {
        if (at != nullptr) g_object_unref(at);
        for (AtspiAccessible* app : childrenOf(desktop)) {
            if (app == nullptr) continue;
            if (found == nullptr && isListed(app)) {
                found = app;
            } else {
                g_object_unref(app);
            }
        }
    }
    g_object_unref(desktop);
    return found;
}

}  // namespace zeblo::platform::linux_desktop

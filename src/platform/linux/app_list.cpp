// The registry's application list and the batch that completes it.
#include "platform/linux/app_list.h"

#include "platform/linux/bus_batch.h"
#include "platform/linux/linux_platform.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";

}  // namespace

std::vector<ListedApp> listApplications(bool withNames) {
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

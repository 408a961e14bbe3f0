// The session's accessibility switch and the Chromium-based processes that
// started while it was off.
#include "platform/linux/a11y_switch.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>

#include "platform/linux/bus_batch.h"
#include "platform/linux/owned.h"

namespace zeblo::platform::linux_desktop {

namespace {

constexpr const char* kBus = "org.a11y.Bus";
constexpr const char* kPath = "/org/a11y/bus";
constexpr const char* kStatus = "org.a11y.Status";

// A private connection to the session bus, closed before it is released.
void closeConnection(DBusConnection* connection) noexcept {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}
using Connection = std::unique_ptr<DBusConnection, decltype(&closeConnection)>;

// The boolean a Properties.Get answer carries in its variant.
bool boolAnswer(const Message& answer, bool* value) {
    DBusMessageIter args;
    if (!answer || dbus_message_get_type(answer.get()) != DBUS_MESSAGE_TYPE_METHOD_RETURN ||
        !dbus_message_iter_init(answer.get(), &args) || dbus_message_iter_get_arg_type(&args) != DBUS_TYPE_VARIANT) {
        return false;
    }
    DBusMessageIter variant;
    dbus_message_iter_recurse(&args, &variant);
    if (dbus_message_iter_get_arg_type(&variant) != DBUS_TYPE_BOOLEAN) return false;
    dbus_bool_t b = FALSE;
    dbus_message_iter_get_basic(&variant, &b);
    *value = b != FALSE;
    return true;
}

Message setEnabled() {
    Message call = methodCall(kBus, kPath, "org.freedesktop.DBus.Properties", "Set");
    if (!call) return call;
    const char* interface = kStatus;
    const char* property = "IsEnabled";
    DBusMessageIter args;
    DBusMessageIter variant;
    dbus_message_iter_init_append(call.get(), &args);
    const dbus_bool_t on = TRUE;
    const bool made = dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &interface) &&
                      dbus_message_iter_append_basic(&args, DBUS_TYPE_STRING, &property) &&
                      dbus_message_iter_open_container(&args, DBUS_TYPE_VARIANT, "b", &variant);
    if (!made) return {};
    if (!dbus_message_iter_append_basic(&variant, DBUS_TYPE_BOOLEAN, &on)) {
        dbus_message_iter_abandon_container(&args, &variant);
        return {};
    }
    if (!dbus_message_iter_close_container(&args, &variant)) return {};
    return call;
}

}  // namespace

bool switchAccessibilityOn() {
    DBusError error;
    dbus_error_init(&error);
    const Connection bus(dbus_bus_get_private(DBUS_BUS_SESSION, &error), closeConnection);
    dbus_error_free(&error);
    if (!bus) return false;
    dbus_connection_set_exit_on_disconnect(bus.get(), FALSE);
    std::vector<Message> ask;
    ask.push_back(propertyCall(kBus, kPath, kStatus, "IsEnabled"));
    bool enabled = true;
    if (!boolAnswer(callAll(bus.get(), ask).front(), &enabled) || enabled) return false;
    std::vector<Message> set;
    set.push_back(setEnabled());
    const Message done = std::move(callAll(bus.get(), set).front());
    return done && dbus_message_get_type(done.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
}

std::vector<UnreadableProgram> chromiumOutside(const std::vector<std::int32_t>& registered) {
    std::vector<UnreadableProgram> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> proc(opendir("/proc"), closedir);
    if (!proc) return found;
    const uid_t me = getuid();
    while (const dirent* entry = readdir(proc.get())) {
        char* end = nullptr;
        const long pid = std::strtol(entry->d_name, &end, 10);
        if (pid <= 0 || *end != '\0') continue;
        if (std::find(registered.begin(), registered.end(), pid) != registered.end()) continue;
        const std::string dir = std::string("/proc/") + entry->d_name;
        struct stat st {};
        if (stat(dir.c_str(), &st) != 0 || st.st_uid != me) continue;
        char exe[4096];
        const ssize_t length = readlink((dir + "/exe").c_str(), exe, sizeof exe - 1);
        if (length <= 0) continue;
        const std::string path(exe, static_cast<std::size_t>(length));
        const std::string folder = path.substr(0, path.rfind('/') + 1);
        if (access((folder + "v8_context_snapshot.bin").c_str(), F_OK) != 0) continue;
        // Chromium rewrites its helpers' command lines as one line, so the
        // switch is looked for anywhere in it; the crash handler beside the
        // program is no application either.
        std::ifstream cmdline(dir + "/cmdline");
        const std::string command{std::istreambuf_iterator<char>(cmdline), std::istreambuf_iterator<char>()};
        if (command.find("--type=") != std::string::npos || path.find("crashpad") != std::string::npos) continue;
        found.push_back({static_cast<std::int32_t>(pid), path.substr(path.rfind('/') + 1)});
    }
    return found;
}

}  // namespace zeblo::platform::linux_desktop

// A private connection to the session bus and what goes with it, owned:
// the sessions of mutter's remote desktop and of the desktop portal end with
// the connection that made them, so each has one of its own.
#pragma once

#include <dbus/dbus.h>

#include <functional>
#include <string_view>

#include "platform/linux/x11_owned.h"  // Owned<T, Release>

namespace zeblo::platform::linux_desktop {

inline void closeBus(DBusConnection* connection) noexcept {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}
using PrivateBus = Owned<DBusConnection, closeBus>;
using BusMessage = Owned<DBusMessage, dbus_message_unref>;

struct BusError {
    DBusError error;
    BusError() { dbus_error_init(&error); }
    ~BusError() { dbus_error_free(&error); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;
};

// A new private connection to the session bus that does not end the process
// when the bus goes away; null when the bus cannot be reached.
inline PrivateBus openPrivateBus() {
    BusError error;
    PrivateBus bus(dbus_bus_get_private(DBUS_BUS_SESSION, &error.error));
    if (bus) dbus_connection_set_exit_on_disconnect(bus.get(), FALSE);
    return bus;
}

// Calls `each` with the key and the value of every entry of the a{sv}
// dictionary at `dict`: the variant's content, or the first member of a
// structure inside it.
inline void forEachEntry(DBusMessageIter* dict, const std::function<void(std::string_view, DBusMessageIter*)>& each) {
    DBusMessageIter entries;
    for (dbus_message_iter_recurse(dict, &entries); dbus_message_iter_get_arg_type(&entries) == DBUS_TYPE_DICT_ENTRY;
         dbus_message_iter_next(&entries)) {
        DBusMessageIter entry, variant;
        dbus_message_iter_recurse(&entries, &entry);
        const char* key = nullptr;
        dbus_message_iter_get_basic(&entry, &key);
        dbus_message_iter_next(&entry);
        dbus_message_iter_recurse(&entry, &variant);
        if (dbus_message_iter_get_arg_type(&variant) == DBUS_TYPE_STRUCT) {
            DBusMessageIter inner;
            dbus_message_iter_recurse(&variant, &inner);
            variant = inner;
        }
        each(key != nullptr ? key : "", &variant);
    }
}

}  // namespace zeblo::platform::linux_desktop

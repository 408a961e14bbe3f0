// A private connection to the session bus and what goes with it, owned:
// the sessions of mutter's remote desktop and of the desktop portal end with
// the connection that made them, so each has one of its own.
#pragma once

#include <dbus/dbus.h>

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

}  // namespace zeblo::platform::linux_desktop

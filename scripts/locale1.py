#!/usr/bin/python3
# Stands in for systemd-localed (org.freedesktop.locale1) on the bus it is
# started on, with the X11 keyboard layout LAYOUT, and prints "ready" once
# it owns the name. mutter (its default plugin) sets its keymap from
# localed's X11 layout at start; wayland-session.sh gives a mutter session a
# layout by pointing mutter's system bus at the session bus, where this runs.
#
#   locale1.py LAYOUT
import sys

from gi.repository import Gio, GLib  # noqa: E402

INTERFACE = """<node><interface name="org.freedesktop.locale1">
<property name="X11Layout" type="s" access="read"/>
<property name="X11Variant" type="s" access="read"/>
<property name="X11Options" type="s" access="read"/>
<property name="X11Model" type="s" access="read"/>
</interface></node>"""
values = {"X11Layout": sys.argv[1], "X11Variant": "", "X11Options": "", "X11Model": "pc105"}
loop = GLib.MainLoop()


def acquired(connection, name):
    node = Gio.DBusNodeInfo.new_for_xml(INTERFACE)
    connection.register_object("/org/freedesktop/locale1", node.interfaces[0], None,
                               lambda *args: GLib.Variant("s", values[args[4]]), None)
    print("ready", flush=True)


Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.locale1", Gio.BusNameOwnerFlags.NONE,
                 None, acquired, lambda *args: loop.quit())
loop.run()

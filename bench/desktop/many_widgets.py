#!/usr/bin/python3
# A GTK 3 window of about 1,000 controls for the tree benchmark: ROWS rows of
# a label, an entry, a check box and a button (250 rows by default).
import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gtk  # noqa: E402

rows = int(sys.argv[1]) if len(sys.argv) > 1 else 250
GLib = gi.repository.GLib
GLib.set_prgname("zeblo-many-gtk")
window = Gtk.Window(title="Zeblo Many GTK")
window.connect("destroy", Gtk.main_quit)
box = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
for i in range(rows):
    row = Gtk.Box(spacing=4)
    row.pack_start(Gtk.Label(label="Row %d" % i), False, False, 0)
    entry = Gtk.Entry()
    entry.set_text("value %d" % i)
    row.pack_start(entry, False, False, 0)
    row.pack_start(Gtk.CheckButton(label="Check %d" % i), False, False, 0)
    row.pack_start(Gtk.Button(label="Button %d" % i), False, False, 0)
    box.pack_start(row, False, False, 0)
# No scrolling: GTK shows (and marks showing) only what a scrolled window
# has in view, and the walk lists what a user sees.
window.add(box)
window.show_all()
Gtk.main()

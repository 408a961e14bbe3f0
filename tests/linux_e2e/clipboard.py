#!/usr/bin/python3
# Another process on CLIPBOARD, for the end-to-end tests (GTK 3):
#   clipboard.py own FILE   owns CLIPBOARD with the targets FILE lists as JSON
#                           ([[target, type, hex bytes], ...]), prints them as
#                           `read` will, and exits once another client takes
#                           the selection;
#   clipboard.py read       prints every target the owner offers (TARGETS and
#                           the other meta targets left out) as one line of
#                           JSON: {target: [type, format, size, sha256 prefix]}.
import hashlib
import json
import sys

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("Gdk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

CLIPBOARD = Gdk.Atom.intern("CLIPBOARD", False)
META = {"TARGETS", "MULTIPLE", "TIMESTAMP", "DELETE", "SAVE_TARGETS"}


def describe(kind, form, data):
    return [kind, form, len(data), hashlib.sha256(data).hexdigest()[:16]]


if sys.argv[1] == "own":
    offers = {target: (kind, bytes.fromhex(data)) for target, kind, data in json.load(open(sys.argv[2]))}
    owner = Gtk.Invisible()
    for target in offers:
        Gtk.selection_add_target(owner, CLIPBOARD, Gdk.Atom.intern(target, False), 0)

    def give(_widget, selection, _info, _time):
        kind, data = offers[selection.get_target().name()]
        selection.set(Gdk.Atom.intern(kind, False), 8, data)

    owner.connect("selection-get", give)
    owner.connect("selection-clear-event", lambda *_: Gtk.main_quit())
    if not Gtk.selection_owner_set(owner, CLIPBOARD, Gdk.CURRENT_TIME):
        sys.exit(1)
    print(json.dumps({target: describe(kind, 8, data) for target, (kind, data) in offers.items()}), flush=True)
    GLib.timeout_add_seconds(30, Gtk.main_quit)
    Gtk.main()
else:
    clipboard = Gtk.Clipboard.get(CLIPBOARD)
    found, targets = clipboard.wait_for_targets()
    out = {}
    for atom in targets if found else []:
        name = atom.name()
        if name in META or name.startswith("INSERT_"):
            continue
        data = clipboard.wait_for_contents(atom)
        if data is not None and data.get_length() >= 0:
            out[name] = describe(data.get_data_type().name(), data.get_format(), data.get_data())
    print(json.dumps(out, sort_keys=True))

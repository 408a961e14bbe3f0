#!/usr/bin/python3
# A GTK 3 window the end-to-end tests drive: a classic menu bar (with a
# submenu, checked items, key bindings and a disabled item), buttons,
# checkboxes, a checklist (a tree view of toggle cells), spin buttons, a combo
# box, text fields, a password field and a dialog that opens and closes. A status label shows the last action, so that tests can
# read what happened through the window's text.
import gi

gi.require_version("Gtk", "3.0")
from gi.repository import Gio, GLib, Gtk  # noqa: E402

GLib.set_prgname("zeblo-testapp")
GLib.set_application_name("ZebloTestApp")

window = Gtk.Window(title="Zeblo Test")
window.set_default_size(600, 500)
window.connect("destroy", Gtk.main_quit)
accel = Gtk.AccelGroup()
window.add_accel_group(accel)
status = Gtk.Label(label="Last: none")


def report(text):
    status.set_text("Last: " + text)


def item(menu, title, key=None, mods=Gtk.accelerator_parse("<Primary>a")[1], sensitive=True, kind=None,
         active=False):
    if kind == "check":
        widget = Gtk.CheckMenuItem(label=title)
        widget.set_active(active)
    else:
        widget = Gtk.MenuItem(label=title)
    widget.set_sensitive(sensitive)
    if key is not None:
        keyval, keymods = Gtk.accelerator_parse(key)
        widget.add_accelerator("activate", accel, keyval, keymods, Gtk.AccelFlags.VISIBLE)
    widget.connect("activate", lambda w: report(title))
    menu.append(widget)
    return widget


def submenu(shell, title):
    top = Gtk.MenuItem(label=title)
    menu = Gtk.Menu()
    menu.set_accel_group(accel)
    top.set_submenu(menu)
    shell.append(top)
    return menu


dialog = None


def open_dialog(*_):
    global dialog
    if dialog is not None:
        return
    dialog = Gtk.Dialog(title="Test Dialog", transient_for=window, modal=False)
    dialog.get_content_area().add(Gtk.Label(label="This is the test dialog"))
    # A form whose fields are known by the labels beside them, a check box
    # and a menu button with a popover; OK reports what was filled in.
    form = Gtk.Grid(row_spacing=4, column_spacing=4)
    entries = {}
    for row, title in enumerate(("Full name:", "Email:")):
        form.attach(Gtk.Label(label=title), 0, row, 1, 1)
        entries[title] = Gtk.Entry()
        form.attach(entries[title], 1, row, 1, 1)
    subscribe = Gtk.CheckButton(label="Subscribe")
    form.attach(subscribe, 0, 2, 2, 1)
    size = ["Medium"]
    sizes = Gio.Menu()
    group = Gio.SimpleActionGroup()
    for choice in ("Small", "Medium", "Large"):
        action = Gio.SimpleAction.new(choice.lower(), None)
        action.connect("activate", lambda a, p, c=choice: size.__setitem__(0, c))
        group.add_action(action)
        sizes.append(choice, "size." + choice.lower())
    chooser = Gtk.MenuButton(label="Size", menu_model=sizes)
    chooser.insert_action_group("size", group)
    form.attach(chooser, 0, 3, 2, 1)
    dialog.get_content_area().add(form)
    ok = Gtk.Button(label="OK")
    ok.connect("clicked", lambda b: report("form %s <%s> subscribe %d size %s" % (
        entries["Full name:"].get_text(), entries["Email:"].get_text(), int(subscribe.get_active()), size[0])))
    dialog.get_content_area().add(ok)
    button = Gtk.Button(label="Dismiss")
    button.connect("clicked", lambda b: close_dialog())
    dialog.get_content_area().add(button)
    dialog.connect("delete-event", lambda *a: close_dialog() or True)
    dialog.show_all()
    report("dialog opened")


def close_dialog():
    global dialog
    if dialog is not None:
        dialog.destroy()
        dialog = None
        report("dialog closed")


bar = Gtk.MenuBar()
file_menu = submenu(bar, "File")
item(file_menu, "New", "<Primary>n")
open_item = item(file_menu, "Open Dialog", "<Primary>o")
open_item.connect("activate", open_dialog)
file_menu.append(Gtk.SeparatorMenuItem())
item(file_menu, "Quit", "<Primary>q").connect("activate", lambda w: Gtk.main_quit())
edit_menu = submenu(bar, "Edit")
item(edit_menu, "Undo", "<Primary>z")
item(edit_menu, "Disabled Item", sensitive=False)
view_menu = submenu(bar, "View")
item(view_menu, "Show Toolbar", kind="check", active=True)
item(view_menu, "Word Wrap", "<Primary><Shift>w", kind="check")
zoom = submenu(view_menu, "Zoom")
item(zoom, "Zoom In", "<Primary>plus")
item(zoom, "Zoom Out", "<Primary>minus")
item(zoom, "Actual Size", "<Primary>period")
item(zoom, "First Page", "<Primary>Page_Up")

box = Gtk.Box(orientation=Gtk.Orientation.VERTICAL, spacing=4)
box.pack_start(bar, False, False, 0)

buttons = Gtk.Box(spacing=4)
press_count = [0]


def pressed(_):
    press_count[0] += 1
    report("pressed %d" % press_count[0])


# A "Press Me" nobody sees comes first: a hidden button, and one on a page of
# a stack that is not shown.
hidden = Gtk.Button(label="Press Me")
hidden.connect("clicked", lambda b: report("hidden pressed"))
hidden.set_no_show_all(True)
buttons.add(hidden)
stack = Gtk.Stack()
back = Gtk.Button(label="Press Me")
back.connect("clicked", lambda b: report("stacked pressed"))
stack.add_named(back, "back")
stack.add_named(Gtk.Label(label="front page"), "front")
buttons.add(stack)
press = Gtk.Button(label="Press Me")
press.connect("clicked", pressed)
buttons.add(press)
disabled = Gtk.Button(label="Disabled Button")
disabled.set_sensitive(False)
buttons.add(disabled)
opener = Gtk.Button(label="Open Dialog")
opener.connect("clicked", open_dialog)
buttons.add(opener)
box.pack_start(buttons, False, False, 0)

feature = Gtk.CheckButton(label="Enable Feature")
feature.connect("toggled", lambda w: report("feature %d" % int(w.get_active())))
box.pack_start(feature, False, False, 0)
remember = Gtk.CheckButton(label="Remember Me")
remember.set_active(True)
box.pack_start(remember, False, False, 0)

# A checklist: each row a toggle cell and the option's name.
options = Gtk.ListStore(bool, str)
options.append([True, "Spell Check"])
options.append([False, "Auto Save"])


def option_toggled(_renderer, path):
    options[path][0] = not options[path][0]
    report("%s %d" % (options[path][1], int(options[path][0])))


# GTK turns a toggle cell's accessible action into a row activation, not a
# toggle: like most checklists, this one toggles on row activation too.
checklist = Gtk.TreeView(model=options)
checklist.connect("row-activated", lambda view, path, column: option_toggled(None, path))
toggle = Gtk.CellRendererToggle()
toggle.connect("toggled", option_toggled)
checklist.append_column(Gtk.TreeViewColumn("On", toggle, active=0))
checklist.append_column(Gtk.TreeViewColumn("Option", Gtk.CellRendererText(), text=1))
box.pack_start(checklist, False, False, 0)

spins = Gtk.Box(spacing=4)
for value in (40, 72):
    spin = Gtk.SpinButton.new_with_range(0, 1000, 1)
    spin.set_value(value)
    spins.add(spin)
# The keyboard focus to the first spin button and back to the name field.
focus_size = Gtk.Button(label="Focus Size")
focus_size.connect("clicked", lambda b: spins.get_children()[0].grab_focus())
spins.add(focus_size)
focus_name = Gtk.Button(label="Focus Name")
focus_name.connect("clicked", lambda b: name.grab_focus())
spins.add(focus_name)
box.pack_start(spins, False, False, 0)

combo = Gtk.ComboBoxText()
for colour in ("Red", "Green", "Blue"):
    combo.append_text(colour)
combo.set_active(0)


def popup_shown(widget, _param):
    # Back to the name field once the list closes, so that later typing
    # lands there.
    if not widget.get_property("popup-shown"):
        GLib.idle_add(name.grab_focus)


combo.connect("notify::popup-shown", popup_shown)
box.pack_start(combo, False, False, 0)

name = Gtk.Entry()
name.set_placeholder_text("Name")
box.pack_start(name, False, False, 0)
password = Gtk.Entry()
password.set_visibility(False)
password.set_text("hunter2")
box.pack_start(password, False, False, 0)
notes = Gtk.TextView()
notes.set_size_request(-1, 120)
box.pack_start(notes, True, True, 0)
box.pack_start(status, False, False, 0)

window.add(box)
window.show_all()
stack.set_visible_child_name("front")
name.grab_focus()
Gtk.main()

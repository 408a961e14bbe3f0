#!/usr/bin/python3
# Compares the zeblo tool's menu snapshot of a Qt application with pyatspi's
# view of its menu bar (titles, enabled and checked states, key equivalents,
# submenus); prints the differences and exits 1 when there is one. In a
# desktop session: compare_qt_menus.py build/zeblo PROGRAM APP-NAME
import json, os, subprocess, sys, time

import pyatspi

zeblo, program, name = sys.argv[1:4]
subprocess.run([zeblo, "apps"], stdout=subprocess.DEVNULL)  # the accessibility bus up first
app = subprocess.Popen([program], env=dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1"))
NAMES = {"plus": "+", "PgUp": "pageup", "PgDown": "pagedown", "Del": "forwarddelete", "Tab": "\t"}


def key(binding, title):
    # Qt's "Ctrl+Shift+W" as (key, modifier bits); "Alt+<a letter of the title>" is a mnemonic.
    if not binding or (binding[:4] == "Alt+" and len(binding) == 5 and binding[4].lower() in title.lower()):
        return None
    parts = binding.split(", ")[0].replace("++", "+plus").replace("Backtab", "Shift+Tab").split("+")
    bits = sum({"Shift": 1, "Alt": 2, "Meta": 4}.get(m, 0) for m in set(parts[:-1])) | (0 if "Ctrl" in parts else 8)
    return NAMES.get(parts[-1], parts[-1].upper() if len(parts[-1]) == 1 else parts[-1]), bits


def theirs(owner):
    items = []
    for c in owner:
        if c.getRole() in (pyatspi.ROLE_POPUP_MENU, pyatspi.ROLE_MENU) and not c.name:
            return theirs(c)  # the container between an item and its submenu's items
        action = c.queryAction() if "Action" in c.get_interfaces() else None
        binding = action.getKeyBinding(0) if action and action.nActions and not c.childCount else ""
        s = c.getState()
        items.append([c.name, s.contains(pyatspi.STATE_SENSITIVE), s.contains(pyatspi.STATE_CHECKED),
                      key(binding, c.name), theirs(c) if c.childCount else []])
    return items


def ours(records):
    return [[r["title"], r["enabled"], r["checked"], (r["cmdChar"], r["cmdModifiers"]) if "cmdChar" in r else None,
             ours(r.get("children", []))] for r in records]


def compare(a, b, where, out):
    if len(a) != len(b):
        out.append("%s: %d items, pyatspi %d" % (where, len(a), len(b)))
    for x, y in zip(a, b):
        for i, field in enumerate(("title", "enabled", "checked", "key")):
            if x[i] != y[i]:
                out.append("%s/%s %s: %r, pyatspi %r" % (where, y[0], field, x[i], y[i]))
        compare(x[4], y[4], where + "/" + y[0], out)


try:
    for _ in range(100):
        found = [a for a in pyatspi.Registry.getDesktop(0) if a is not None and a.name == name]
        bar = pyatspi.findDescendant(found[0], lambda o: o.getRole() == pyatspi.ROLE_MENU_BAR) if found else None
        if bar is not None:
            break
        time.sleep(0.1)
    start = time.monotonic()
    snapshot = json.loads(subprocess.run([zeblo, "menus", name], capture_output=True, text=True).stdout)
    print("zeblo menus: %.0f ms" % ((time.monotonic() - start) * 1000))
    differences = []
    compare(ours(snapshot.get("menus", [])), theirs(bar), "", differences)
    print("\n".join(differences) or "no differences")
    sys.exit(1 if differences else 0)
finally:
    app.terminate()

#!/usr/bin/python3
# Compares the zeblo tool's menu snapshot of a Qt application with pyatspi's
# view of the same menu bar: titles, enabled and checked states, key
# equivalents and submenus. Prints every difference; exits 1 when there is
# one. Run inside a desktop session:
#
#   scripts/desktop-session.sh tests/linux_e2e/compare_qt_menus.py build/zeblo \
#       /usr/lib/x86_64-linux-gnu/qt5/examples/widgets/mainwindows/menus/menus menus
import json, os, subprocess, sys, time

import pyatspi

zeblo, program, name = sys.argv[1:4]
subprocess.run([zeblo, "apps"], stdout=subprocess.DEVNULL)  # the accessibility bus up first
app_process = subprocess.Popen([program], env=dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1"))
MODS = {"Shift": 1, "Alt": 2, "Meta": 4}


def key(binding, title):
    # Qt's "Ctrl+Shift+W" as (character or key name, modifier bits); its
    # "Alt+<letter of the title>" mnemonics are no key equivalents.
    if not binding or (binding.startswith("Alt+") and len(binding) == 5 and binding[4].lower() in title.lower()):
        return None
    parts = binding.split(", ")[0].replace("++", "+plus").split("+")
    bits = 8
    for mod in parts[:-1]:
        bits = bits & ~8 if mod == "Ctrl" else bits | MODS.get(mod, 0)
    if parts[-1] == "Backtab":
        parts[-1], bits = "Tab", bits | 1
    names = {"plus": "+", "PgUp": "pageup", "PgDown": "pagedown", "Del": "forwarddelete", "Tab": "\t"}
    k = names.get(parts[-1], parts[-1].upper() if len(parts[-1]) == 1 else parts[-1])
    return (k, bits)


def atspi_items(owner):
    items = []
    for child in owner:
        if child.getRole() in (pyatspi.ROLE_POPUP_MENU, pyatspi.ROLE_MENU) and not child.name:
            return atspi_items(child)  # the container between an item and its submenu's items
        states = child.getState()
        action = child.queryAction() if "Action" in child.get_interfaces() else None
        has_sub = child.childCount > 0
        binding = action.getKeyBinding(0) if action and action.nActions else ""
        items.append({"title": child.name, "enabled": states.contains(pyatspi.STATE_SENSITIVE),
                      "checked": states.contains(pyatspi.STATE_CHECKED),
                      "key": None if has_sub else key(binding, child.name),
                      "children": atspi_items(child) if has_sub else []})
    return items


def zeblo_items(records):
    return [{"title": r["title"], "enabled": r["enabled"], "checked": r["checked"],
             "key": (r["cmdChar"], r["cmdModifiers"]) if "cmdChar" in r else None,
             "children": zeblo_items(r.get("children", []))} for r in records]


def compare(ours, theirs, where, out):
    if len(ours) != len(theirs):
        out.append("%s: %d items, pyatspi %d" % (where, len(ours), len(theirs)))
    for a, b in zip(ours, theirs):
        for field in ("title", "enabled", "checked", "key"):
            if a[field] != b[field]:
                out.append("%s/%s %s: %r, pyatspi %r" % (where, b["title"], field, a[field], b[field]))
        compare(a["children"], b["children"], where + "/" + b["title"], out)


try:
    bar = None
    for _ in range(100):
        apps = [a for a in pyatspi.Registry.getDesktop(0) if a is not None and a.name == name]
        bar = pyatspi.findDescendant(apps[0], lambda o: o.getRole() == pyatspi.ROLE_MENU_BAR) if apps else None
        if bar is not None:
            break
        time.sleep(0.1)
    theirs = atspi_items(bar)
    start = time.monotonic()
    snapshot = json.loads(subprocess.run([zeblo, "menus", name], capture_output=True, text=True).stdout)
    print("zeblo menus: %.0f ms, %d menus" % ((time.monotonic() - start) * 1000, len(snapshot.get("menus", []))))
    differences = []
    compare(zeblo_items(snapshot.get("menus", [])), theirs, "", differences)
    print("\n".join(differences) if differences else "no differences")
    sys.exit(1 if differences else 0)
finally:
    app_process.terminate()

#!/usr/bin/python3
# The walks the desktop benchmark times, done with pyatspi the way a script
# would: a menu snapshot (title, enabled, checked, key binding and children of
# every menu item) and a window's text (role, name, value and description of
# every element). Prints the median times in milliseconds as JSON.
#
#   pyatspi_walks.py MENU_APP TEXT_APP REPETITIONS
#   pyatspi_walks.py tree APP REPETITIONS
#
# The tree walk reads what the element tree shows of every element a user
# sees (the showing ones; inside a web page the visible ones): role, name,
# description, states, action names and a text's value.
import json
import statistics
import sys
import time

import pyatspi
from gi.repository import GLib

TEXT_ROLES = {pyatspi.ROLE_TEXT, pyatspi.ROLE_ENTRY, pyatspi.ROLE_PASSWORD_TEXT, pyatspi.ROLE_PARAGRAPH}
LABEL_ROLES = {pyatspi.ROLE_LABEL, pyatspi.ROLE_STATIC}


def application(name):
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and app.name == name:
            return app
    raise SystemExit("not running: " + name)


def first_window(app):
    for window in app:
        if window is not None and window.getState().contains(pyatspi.STATE_SHOWING):
            return window
    raise SystemExit("no window: " + app.name)


def find_role(root, role):
    for child in root:
        if child is None:
            continue
        if child.getRole() == role:
            return child
        found = find_role(child, role)
        if found is not None:
            return found
    return None


def menu_item(item, path):
    states = item.getState()
    record = {"title": item.name, "path": path, "enabled": states.contains(pyatspi.STATE_SENSITIVE),
              "checked": states.contains(pyatspi.STATE_CHECKED)}
    try:
        record["key"] = item.queryAction().getKeyBinding(0)
    except (NotImplementedError, GLib.GError):  # no actions; Qt: an item without its action object
        pass
    children = [menu_item(child, path + [item.name]) for child in item if child is not None]
    if children:
        record["children"] = children
    return record


def menu_snapshot(name):
    bar = find_role(first_window(application(name)), pyatspi.ROLE_MENU_BAR)
    return [menu_item(menu, []) for menu in bar if menu is not None]


def text_lines(element, lines):
    role = element.getRole()
    name = element.name
    if role in TEXT_ROLES:
        text = element.queryText()
        value = text.getText(0, -1)
    elif role in LABEL_ROLES:
        value = name
    else:
        value = ""
    lines.append((element.getRoleName(), name, value, element.description))
    for child in element:
        if child is not None:
            text_lines(child, lines)
    return lines


def window_text(name):
    return text_lines(first_window(application(name)), [])


def tree_node(element, seen=pyatspi.STATE_SHOWING):
    role = element.getRole()
    if role == pyatspi.ROLE_DOCUMENT_WEB:
        seen = pyatspi.STATE_VISIBLE  # a page's content scrolled out of view is not showing
    node = {"role": element.getRoleName(), "name": element.name, "description": element.description,
            "states": element.getState().getStates()}
    try:
        action = element.queryAction()
        node["actions"] = [action.getName(i) for i in range(action.nActions)]
    except NotImplementedError:
        pass
    if role in TEXT_ROLES:
        node["value"] = element.queryText().getText(0, -1)
    children = [tree_node(child, seen) for child in element
                if child is not None and child.getState().contains(seen)]
    if children:
        node["children"] = children
    return node


def count(node):
    return 1 + sum(count(child) for child in node.get("children", []))


def tree(name):
    return tree_node(first_window(application(name)))


def median_ms(walk, name, repetitions):
    times = []
    for _ in range(repetitions):
        start = time.perf_counter()
        walk(name)
        times.append((time.perf_counter() - start) * 1000)
    return statistics.median(times)


def main():
    if sys.argv[1] == "tree":
        app, repetitions = sys.argv[2], int(sys.argv[3])
        print(json.dumps({"tree_ms": median_ms(tree, app, repetitions), "tree_elements": count(tree(app))}))
        return
    # A menu application of "-" times the window text only.
    menu_app, text_app, repetitions = sys.argv[1], sys.argv[2], int(sys.argv[3])
    medians = {"text_ms": median_ms(window_text, text_app, repetitions),
               "text_elements": len(window_text(text_app))}
    if menu_app != "-":
        medians["menus_ms"] = median_ms(menu_snapshot, menu_app, repetitions)
    print(json.dumps(medians))


main()

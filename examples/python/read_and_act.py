"""The Python package on a desktop: what runs, a menu, a window's text, a
click, and an error. Run on the example desktop with the simulated library:

    ZEBLO_SIMULATE=examples/desktop.json ZEBLO_LIBRARY=build/simulated/libZEBLOui.so \\
        PYTHONPATH=python python3 examples/python/read_and_act.py
"""
import zeblo

print("running:", zeblo.running_apps())
print("in front:", zeblo.frontmost_info())
menus = zeblo.app_menus("Quick Notes")
print("File menu:", [item["title"] for item in menus["menus"][1]["children"]])
print("Mail's inbox says:", zeblo.window_text("Mail", "inbox"))
print("Save As… chosen:", zeblo.menu_click("Quick Notes", ["File", "Save As\u2026"]))
try:
    zeblo.window_text("Calendar")
except zeblo.ZebloError as error:
    print("Calendar:", error)

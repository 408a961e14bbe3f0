"""What the Python package adds to a call, measured with timeit on the
simulated example desktop (medians over 41 repeats).

For each operation: the bare ctypes call of the C function (what the C call
itself costs, plus ctypes' own crossing), and the package's function (which
also converts the arguments, frees the result and parses its JSON). The
overhead over the C call is the median difference of the two (timed in
alternation), plus ctypes' crossing (a call of zeblo_free_string(NULL),
which does nothing).

    ZEBLO_LIBRARY=build/simulated/libZEBLOui.so \\
    ZEBLO_SIMULATE=examples/desktop.json python3 bench/python_overhead.py
"""
import ctypes
import statistics
import sys
import timeit
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "python"))
import zeblo  # noqa: E402
from zeblo._native import library  # noqa: E402

lib = library()


def median_us(fn, number=2000):
    return statistics.median(timeit.repeat(fn, number=number, repeat=15)) / number * 1e6


def bare_string(fn, *args):
    def call():
        lib.zeblo_free_string(fn(*args))
    return call


titles = (ctypes.c_char_p * 2)(b"File", b"Save")
cases = [
    ("is_in_text_field", lib.zeblo_is_in_text_field, zeblo.is_in_text_field),
    ("running_apps", bare_string(lib.zeblo_get_running_apps), zeblo.running_apps),
    ("window_titles", bare_string(lib.zeblo_get_window_titles, b"Quick Notes"),
     lambda: zeblo.window_titles("Quick Notes")),
    ("menu_item_exists", lambda: lib.zeblo_menu_item_exists(b"Quick Notes", titles, 2),
     lambda: zeblo.menu_item_exists("Quick Notes", ["File", "Save"])),
    ("window_text", bare_string(lib.zeblo_get_window_text, b"Quick Notes", None),
     lambda: zeblo.window_text("Quick Notes")),
]


def paired(bare, wrapped, number=500, repeat=41):
    """Medians of the two times and of their difference, timed in alternation
    so that a slow moment of the machine hits both alike."""
    b, w, d = [], [], []
    for _ in range(repeat):
        tb = timeit.timeit(bare, number=number) / number * 1e6
        tw = timeit.timeit(wrapped, number=number) / number * 1e6
        b.append(tb), w.append(tw), d.append(tw - tb)
    return statistics.median(b), statistics.median(w), statistics.median(d)


crossing = median_us(lambda: lib.zeblo_free_string(None), number=20000)
print(f"ctypes crossing (zeblo_free_string(NULL)): {crossing:.2f} us")
print(f"{'operation':<18} {'bare ctypes us':>15} {'package us':>11} {'overhead us':>12}")
for name, bare, wrapped in cases:
    b, w, d = paired(bare, wrapped)
    print(f"{name:<18} {b:>15.2f} {w:>11.2f} {d + crossing:>12.2f}")

"""Finding and loading libZEBLOui, and the ctypes declarations of its functions."""
from __future__ import annotations

import ctypes
import ctypes.util
import os
import sys
import sysconfig
import threading
from pathlib import Path
from typing import List, Optional

from ._version import ABI

# The superset library (the 25 functions and the element interface) first,
# else the plain one, whose element functions are then missing.
_LIB_NAMES = {"darwin": ["libZEBLOuiPlus.dylib", "libZEBLOui.dylib"]}.get(
    sys.platform, ["libZEBLOuiPlus.so", f"libZEBLOuiPlus.so.{ABI}", "libZEBLOui.so", f"libZEBLOui.so.{ABI}"])
_lock = threading.Lock()
_lib: Optional[ctypes.CDLL] = None
_path: Optional[str] = None


class LibraryNotFound(OSError):
    """libZEBLOui could not be found or loaded."""


def _first_existing(folders: List[Path]) -> Optional[Path]:
    for folder in folders:
        for name in _LIB_NAMES:
            candidate = folder / name
            if candidate.is_file():
                return candidate
    return None


def _system_folders() -> List[Path]:
    """Where an installed library lies: the loader's search path, then the usual prefixes."""
    folders = [Path(p) for p in os.environ.get("LD_LIBRARY_PATH", "").split(os.pathsep) if p]
    folders += [Path(p) for p in os.environ.get("DYLD_LIBRARY_PATH", "").split(os.pathsep) if p]
    multiarch = sysconfig.get_config_var("MULTIARCH") or ""
    for prefix in ("/usr/local", "/opt/homebrew", "/usr"):
        if multiarch:
            folders.append(Path(prefix) / "lib" / multiarch)
        folders += [Path(prefix) / "lib64", Path(prefix) / "lib"]
    return folders


def find_library() -> str:
    """The path (or loader name) of the library this process should load.

    ZEBLO_LIBRARY, when set, names the file. Otherwise, when ZEBLO_SIMULATE
    is set, the simulated library (simulated/ beside the package, or
    zeblo/simulated/ in a library folder): never the real one, so that a test
    meant for the simulated desktop cannot drive the real desktop. Otherwise
    the library beside the package (a wheel carries it there), then the one
    the system's loader finds.
    """
    explicit = os.environ.get("ZEBLO_LIBRARY")
    if explicit:
        return explicit
    here = Path(__file__).resolve().parent
    if os.environ.get("ZEBLO_SIMULATE"):
        found = _first_existing([here / "simulated"] + [f / "zeblo" / "simulated" for f in _system_folders()])
        if found is None:
            raise LibraryNotFound(
                "ZEBLO_SIMULATE is set but the simulated library (zeblo/simulated/libZEBLOui) was not "
                "found; set ZEBLO_LIBRARY to its path")
        return str(found)
    found = _first_existing([here])
    if found is not None:
        return str(found)
    for stem in ("ZEBLOuiPlus", "ZEBLOui"):
        name = ctypes.util.find_library(stem)
        if name:
            return name
    found = _first_existing(_system_folders())
    if found is not None:
        return str(found)
    raise LibraryNotFound("libZEBLOui not found: install it, or set ZEBLO_LIBRARY to its path")


def _declare(lib: ctypes.CDLL) -> None:
    s, b, i32 = ctypes.c_char_p, ctypes.c_bool, ctypes.c_int32
    strs = ctypes.POINTER(ctypes.c_char_p)
    result = ctypes.c_void_p  # a string the caller frees: kept as an address
    table = {
        "zeblo_get_app_menus": (result, [s]),
        "zeblo_menu_click": (b, [s, strs, i32]),
        "zeblo_menu_item_exists": (b, [s, strs, i32]),
        "zeblo_menu_item_enabled": (b, [s, strs, i32]),
        "zeblo_send_keystroke": (b, [s, s, i32]),
        "zeblo_send_global_keystroke": (b, [ctypes.POINTER(ctypes.c_uint16), i32, ctypes.c_uint64]),
        "zeblo_type_text": (b, [s, b]),
        "zeblo_paste_text": (b, [s]),
        "zeblo_paste_into_focused_field": (b, [s, b]),
        "zeblo_click_button": (b, [s, s, s]),
        "zeblo_click_checkbox": (b, [s, s, s]),
        "zeblo_get_window_buttons": (result, [s, s]),
        "zeblo_set_checkbox_value": (b, [s, s, s, i32]),
        "zeblo_get_popup_menu_items": (result, [s, s, s]),
        "zeblo_get_window_text": (result, [s, s]),
        "zeblo_get_frontmost_info": (result, []),
        "zeblo_get_running_apps": (result, []),
        "zeblo_focus_app": (b, [s, s, b, b, i32]),
        "zeblo_launch_app": (b, [s]),
        "zeblo_is_in_text_field": (b, []),
        "zeblo_window_exists": (b, [s, s]),
        "zeblo_get_window_titles": (result, [s]),
        "zeblo_wait_for_window": (b, [s, s, i32, i32]),
        "zeblo_close_window": (b, [s, s, i32]),
        "zeblo_free_string": (None, [ctypes.c_void_p]),
    }
    # The element interface, in libZEBLOuiPlus only.
    elements = {
        "zeblo_element_tree": (result, [s]),
        "zeblo_element_find": (result, [s]),
        "zeblo_element_get": (result, [s]),
        "zeblo_element_act": (result, [s, s, s]),
        "zeblo_element_wait": (result, [s]),
        "zeblo_press_keys": (result, [s, s]),
        "zeblo_last_failure": (result, []),
    }
    if hasattr(lib, "zeblo_element_tree"):
        table.update(elements)
    for name, (restype, argtypes) in table.items():
        function = getattr(lib, name)
        function.restype = restype
        function.argtypes = argtypes


def library() -> ctypes.CDLL:
    """The loaded library, loaded and declared on first use."""
    global _lib, _path
    if _lib is not None:
        return _lib
    with _lock:
        if _lib is None:
            path = find_library()
            try:
                lib = ctypes.CDLL(path)
            except OSError as error:
                raise LibraryNotFound(f"cannot load libZEBLOui from {path}: {error}") from error
            _declare(lib)
            _lib, _path = lib, path
        return _lib


def has_elements() -> bool:
    """Whether the loaded library is libZEBLOuiPlus, with the element interface."""
    return hasattr(library(), "zeblo_element_tree")


def library_path() -> str:
    """What the loaded library was loaded from (loading it if need be)."""
    library()
    assert _path is not None
    return _path

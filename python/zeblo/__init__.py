"""Drive other running desktop applications the way a user would.

Python bindings of libZEBLOui (ctypes, standard library only): read an
application's menus and window text, choose menu items, press buttons and
check boxes, type, paste and send keystrokes, wait for windows.

    import zeblo
    zeblo.running_apps()                          # ['Finder', 'Mail', ...]
    zeblo.menu_click("TextEdit", ["File", "New"])  # True
    zeblo.window_text("TextEdit")                 # ['[AXStaticText] ...', ...]

Names of applications and windows are UTF-8 strings; None (or "") for an
application means the frontmost one, for a window the application's first
window. Functions that read return Python values (lists, dicts); where the
library answers with an error object they raise ZebloError with its text.
Functions that act return True or False: on False, zeblo.last_failure()
tells why (kind, case, message), and the library has written its reason to
the system log (and to standard error when ZEBLO_LOG_STDERR=1). Times are in
seconds.

Elements (zeblo.elements): zeblo.tree() and zeblo.find() give Element
objects with references and methods (press(), set_value(), focus(),
check(), open_menu()...); zeblo.wait_for() and zeblo.press_keys("ctrl+s").

The library is found through ZEBLO_LIBRARY (a path), beside this package (the
wheel carries it), or on the system's library path: libZEBLOuiPlus (the 25
functions and the element interface) where it is, else libZEBLOui. With ZEBLO_SIMULATE naming a desktop file, the
simulated library is loaded instead and every call works on that simulated
desktop (see the library's header, "The simulated library").
"""
from __future__ import annotations

import ctypes
import enum
import json
from typing import Any, Dict, List, Optional, Sequence

from ._native import LibraryNotFound, library, library_path
from .elements import (Element, ElementError, Failure, StaleElement, find, last_failure, press_keys, tree,
                       wait_for)

from ._version import VERSION as __version__
__all__ = [
    "ZebloError", "LibraryNotFound", "Modifier", "Flag", "Condition", "library_path",
    "app_menus", "menu_click", "menu_item_exists", "menu_item_enabled",
    "send_keystroke", "send_global_keystroke", "type_text", "paste_text", "paste_into_focused_field",
    "click_button", "click_checkbox", "window_buttons", "set_checkbox_value", "popup_menu_items",
    "window_text", "frontmost_info", "running_apps", "focus_app", "launch_app", "is_in_text_field",
    "window_exists", "window_titles", "wait_for_window", "close_window",
    "Element", "ElementError", "StaleElement", "Failure", "tree", "find", "wait_for", "press_keys",
    "last_failure",
]

_INT32_MAX = 2**31 - 1


class ZebloError(Exception):
    """The library answered with an error object; str(error) is its text."""


class Modifier(enum.IntFlag):
    """Modifiers of send_keystroke."""
    NONE = 0
    SHIFT = 1
    CONTROL = 2
    OPTION = 4
    COMMAND = 8


class Flag(enum.IntFlag):
    """Modifier flags of send_global_keystroke (an event flag mask)."""
    NONE = 0
    SHIFT = 0x20000
    CONTROL = 0x40000
    OPTION = 0x80000
    COMMAND = 0x100000


class Condition(enum.IntEnum):
    """What wait_for_window waits for."""
    EXISTS = 0
    GONE = 1
    FRONTMOST = 2


# --- conversions ---------------------------------------------------------------

def _text(value: Optional[str]) -> Optional[bytes]:
    """A str argument as UTF-8 (lone surrogates become U+FFFD, as the library reads bad bytes)."""
    if value is None:
        return None
    if not isinstance(value, str):
        raise TypeError(f"expected str or None, got {type(value).__name__}")
    return value.encode("utf-8", "replace")


def _titles(path: Sequence[str]) -> "tuple[Any, int]":
    if isinstance(path, str):
        raise TypeError("a menu path is a sequence of titles, e.g. ['File', 'Save'], not a str")
    items = [_text(t) for t in path]
    return (ctypes.c_char_p * len(items))(*items), len(items)


def _int32(value: int, name: str) -> int:
    if not -2**31 <= value <= _INT32_MAX:
        raise ValueError(f"{name} must fit in 32 bits, got {value}")
    return int(value)


def _millis(seconds: float, name: str) -> int:
    """Seconds as the library's whole milliseconds (clamped to its 32-bit range)."""
    if seconds != seconds:  # NaN
        raise ValueError(f"{name} must be a number of seconds")
    return int(max(-2**31, min(_INT32_MAX, round(seconds * 1000))))


def _result(address: Optional[int]) -> Any:
    """Takes a string the library returned: frees it, parses its JSON, raises its error object."""
    if address is None:
        raise MemoryError("libZEBLOui could not allocate its result")
    lib = library()
    try:
        text = ctypes.string_at(address).decode("utf-8", "replace")
    finally:
        lib.zeblo_free_string(address)
    value = json.loads(text)
    if isinstance(value, dict) and len(value) == 1 and isinstance(value.get("error"), str):
        raise ZebloError(value["error"])
    return value


# --- menus ---------------------------------------------------------------------

def app_menus(app: Optional[str] = None) -> Dict[str, Any]:
    """The whole menu bar: {"app": name, "menus": [item, ...]}.

    Each item has "title", "path" (its ancestors' titles), "enabled",
    "checked", and when present "cmdChar", "cmdModifiers" and "children".
    app is matched exactly; None is the frontmost application. Raises
    ZebloError when the application, or its menu bar, is not found.
    """
    return _result(library().zeblo_get_app_menus(_text(app)))


def menu_click(app: Optional[str], path: Sequence[str]) -> bool:
    """Chooses the menu item at path, e.g. ["File", "Save"]; True when it accepted."""
    titles, count = _titles(path)
    return bool(library().zeblo_menu_click(_text(app), titles, count))


def menu_item_exists(app: Optional[str], path: Sequence[str]) -> bool:
    """Whether every title of path is found (enabled or not). Presses nothing."""
    titles, count = _titles(path)
    return bool(library().zeblo_menu_item_exists(_text(app), titles, count))


def menu_item_enabled(app: Optional[str], path: Sequence[str]) -> bool:
    """Whether the item at path is found and enabled. Presses nothing."""
    titles, count = _titles(path)
    return bool(library().zeblo_menu_item_enabled(_text(app), titles, count))


# --- keyboard and text -----------------------------------------------------------

def send_keystroke(app: Optional[str], key: str, modifiers: int = Modifier.NONE) -> bool:
    """Activates app (None: the frontmost) and presses key with modifiers (Modifier flags).

    key names one key: "a", "1", ";", " ", "\\t", "\\n" (Return), "\\b",
    "\\x1b" (Escape), "f1".."f12", "left", "right", "up", "down"; nothing
    else ("!" is "1" with Modifier.SHIFT, "return" and "home" name no key).
    """
    return bool(library().zeblo_send_keystroke(_text(app), _text(key), _int32(modifiers, "modifiers")))


def send_global_keystroke(key_codes: Sequence[int], modifier_flags: int = Flag.NONE) -> bool:
    """Presses a chord of virtual key codes (US layout), down in order and up in reverse."""
    codes = [int(c) for c in key_codes]
    if any(not 0 <= c <= 0xFFFF for c in codes):
        raise ValueError("key codes are 0 to 65535")
    if not 0 <= modifier_flags < 2**64:
        raise ValueError("modifier_flags is an unsigned 64-bit mask")
    array = (ctypes.c_uint16 * len(codes))(*codes)
    return bool(library().zeblo_send_global_keystroke(array, len(codes), int(modifier_flags)))


def type_text(text: str, *, mark_events: bool = False) -> bool:
    """Types printable ASCII, tab and newline key by key into whatever has the focus."""
    return bool(library().zeblo_type_text(_text(text), bool(mark_events)))


def paste_text(text: str) -> bool:
    """Pastes any text through the clipboard, then puts the clipboard back."""
    return bool(library().zeblo_paste_text(_text(text)))


def paste_into_focused_field(text: str, *, send_enter: bool = False) -> bool:
    """Sets the focused text field's whole value (no keystrokes), then Return if asked."""
    return bool(library().zeblo_paste_into_focused_field(_text(text), bool(send_enter)))


# --- windows and controls ----------------------------------------------------------

def click_button(app: Optional[str], window: Optional[str], button: str) -> bool:
    """Presses the first button whose title contains button (case ignored)."""
    return bool(library().zeblo_click_button(_text(app), _text(window), _text(button)))


def click_checkbox(app: Optional[str], window: Optional[str], checkbox: str) -> bool:
    """Presses the first check box whose title contains checkbox (case ignored)."""
    return bool(library().zeblo_click_checkbox(_text(app), _text(window), _text(checkbox)))


def window_buttons(app: Optional[str], window: Optional[str] = None) -> List[str]:
    """The titles of the window's buttons, in order. Raises ZebloError when not found."""
    return _result(library().zeblo_get_window_buttons(_text(app), _text(window)))


def set_checkbox_value(app: Optional[str], window: Optional[str], checkbox: str, value: int) -> bool:
    """Writes value (0 off, 1 on) into the check box's value."""
    return bool(library().zeblo_set_checkbox_value(_text(app), _text(window), _text(checkbox),
                                                   _int32(value, "value")))


def popup_menu_items(app: Optional[str], window: Optional[str], popup: str) -> List[str]:
    """Opens the popup button and returns its items' titles. Raises ZebloError when not found."""
    return _result(library().zeblo_get_popup_menu_items(_text(app), _text(window), _text(popup)))


def window_text(app: Optional[str], window: Optional[str] = None) -> List[str]:
    """The window's text, one "[ROLE ...] text" line per element. Raises ZebloError when not found."""
    return _result(library().zeblo_get_window_text(_text(app), _text(window)))


# --- applications ----------------------------------------------------------------------

def frontmost_info() -> Dict[str, str]:
    """{"app": name, "window": focused window's title}. Raises ZebloError when none is in front."""
    return _result(library().zeblo_get_frontmost_info())


def running_apps() -> List[str]:
    """The names of the running applications with a user interface, in the workspace's order."""
    return _result(library().zeblo_get_running_apps())


def focus_app(app: Optional[str], window: Optional[str] = None, *, switch: bool = True, launch: bool = False,
              timeout: float = 5.0) -> bool:
    """Brings app to the front (launching it when launch is true) and waits up to timeout
    seconds for window (None: any window)."""
    return bool(library().zeblo_focus_app(_text(app), _text(window), bool(switch), bool(launch),
                                          _millis(timeout, "timeout")))


def launch_app(app: str) -> bool:
    """Starts app by name."""
    return bool(library().zeblo_launch_app(_text(app)))


def is_in_text_field() -> bool:
    """Whether the keyboard focus is in a text field."""
    return bool(library().zeblo_is_in_text_field())


# --- windows, continued ------------------------------------------------------------------

def window_exists(app: Optional[str], window: Optional[str] = None) -> bool:
    """Whether the application has the window (title matched loosely)."""
    return bool(library().zeblo_window_exists(_text(app), _text(window)))


def window_titles(app: Optional[str]) -> List[str]:
    """The titles of the application's windows (app matched loosely); [] when it is not found."""
    return _result(library().zeblo_get_window_titles(_text(app)))


def wait_for_window(app: Optional[str], window: Optional[str], condition: int = Condition.EXISTS,
                    timeout: float = 5.0) -> bool:
    """Polls every 0.05 s, for up to timeout seconds, until condition holds."""
    return bool(library().zeblo_wait_for_window(_text(app), _text(window), _int32(condition, "condition"),
                                                _millis(timeout, "timeout")))


def close_window(app: Optional[str], window: Optional[str], *, retry_for: Optional[float] = None) -> bool:
    """Presses the window's close button; with retry_for (seconds), tries again until it is gone."""
    retry = -1 if retry_for is None else _millis(retry_for, "retry_for")
    return bool(library().zeblo_close_window(_text(app), _text(window), retry))

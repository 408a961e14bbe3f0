"""Elements: a window as a tree of what a user sees, each element with a
reference; finding, acting on and waiting for elements; keys by name; and why
the previous call failed. Needs libZEBLOuiPlus (the default library).

    form = zeblo.find("Contacts", role="textfield", name="Email")[0]
    form.set_value("ada@example.org")
    zeblo.find("Contacts", role="button", name="OK")[0].press()

An element is a snapshot: its reference is resolved and checked afresh by
every method, which raises StaleElement (acting on nothing) when the element
there has changed or gone.
"""
from __future__ import annotations

import ctypes
import json
from dataclasses import dataclass, field
from typing import Any, Dict, List, Optional

from ._native import has_elements, library


class ElementError(Exception):
    """An element function failed: `kind` and `case` say how (see zeblo_plus.h)."""

    def __init__(self, kind: str, case: str, message: str) -> None:
        super().__init__(message)
        self.kind, self.case, self.message = kind, case, message


class StaleElement(ElementError):
    """The reference no longer leads to the element it was made for; nothing was done."""


def _call(name: str, *args: Optional[str]) -> Any:
    lib = library()
    if not has_elements():
        raise ElementError("usage", "noElementInterface",
                           "the loaded library is libZEBLOui; the element interface is in libZEBLOuiPlus")
    address = getattr(lib, name)(*[None if a is None else a.encode("utf-8") for a in args])
    if address is None:
        raise MemoryError("libZEBLOuiPlus could not allocate its result")
    try:
        text = ctypes.string_at(address).decode("utf-8", "replace")
    finally:
        lib.zeblo_free_string(address)
    value = json.loads(text)
    if isinstance(value, dict) and isinstance(value.get("error"), dict):
        e = value["error"]
        cls = StaleElement if e.get("kind") == "stale" else ElementError
        raise cls(e.get("kind", ""), e.get("case", ""), e.get("message", ""))
    return value


@dataclass
class Element:
    """One element as it was read: role, name, value, states and children."""

    ref: Optional[str]
    role: str
    name: str = ""
    value: str = ""
    description: str = ""
    states: List[str] = field(default_factory=list)
    actions: List[str] = field(default_factory=list)
    children: List["Element"] = field(default_factory=list)
    more: int = 0

    @classmethod
    def _of(cls, node: Dict[str, Any]) -> "Element":
        return cls(ref=node.get("ref"), role=node.get("role", ""), name=node.get("name", ""),
                   value=node.get("value", ""), description=node.get("description", ""),
                   states=list(node.get("states", [])), actions=list(node.get("actions", [])),
                   children=[cls._of(c) for c in node.get("children", [])], more=int(node.get("more", 0)))

    @property
    def enabled(self) -> bool:
        return "disabled" not in self.states

    @property
    def checked(self) -> bool:
        return "checked" in self.states

    @property
    def focused(self) -> bool:
        return "focused" in self.states

    def walk(self):
        """This element and every one below it, in document order."""
        yield self
        for child in self.children:
            yield from child.walk()

    def _act(self, action: str, value: Optional[str] = None) -> Dict[str, Any]:
        if self.ref is None:
            raise ElementError("usage", "noReference", "a hidden element has no reference to act on")
        return _call("zeblo_element_act", self.ref, action, value)

    def press(self) -> None:
        self._act("press")

    def toggle(self) -> None:
        self._act("toggle")

    def check(self) -> bool:
        """Checks it; False when it was checked already."""
        return bool(self._act("check").get("changed"))

    def uncheck(self) -> bool:
        return bool(self._act("uncheck").get("changed"))

    def focus(self) -> None:
        self._act("focus")

    def set_value(self, value: Any) -> None:
        """Text for fields, True/False for check boxes, an item's name for pop-up buttons, a number for sliders."""
        text = ("true" if value else "false") if isinstance(value, bool) else str(value)
        self._act("set_value", text)

    def select(self) -> None:
        self._act("select")

    def expand(self) -> None:
        self._act("expand")

    def collapse(self) -> None:
        self._act("collapse")

    def open_menu(self) -> List["Element"]:
        """Opens its menu (a menu button's popover, a context menu): the items then shown."""
        return [Element._of(n) for n in self._act("open_menu").get("menu", [])]

    def scroll_into_view(self) -> None:
        self._act("scroll_into_view")

    def increment(self) -> None:
        self._act("increment")

    def decrement(self) -> None:
        self._act("decrement")

    def refresh(self) -> "Element":
        """The element read afresh (raises StaleElement when it changed)."""
        if self.ref is None:
            raise ElementError("usage", "noReference", "a hidden element has no reference")
        return Element._of(_call("zeblo_element_get", self.ref)["element"])


def _query(app: Optional[str], window: Optional[str], **members: Any) -> str:
    query: Dict[str, Any] = {"app": app or ""}
    if window is not None:
        query["window"] = window
    query.update({k: v for k, v in members.items() if v is not None})
    return json.dumps(query)


def tree(app: Optional[str] = None, window: Optional[str] = None, *, max_nodes: Optional[int] = None,
         max_depth: Optional[int] = None, hidden: bool = False) -> List[Element]:
    """The windows (or the one window) of an application as trees of elements."""
    result = _call("zeblo_element_tree", _query(app, window, maxNodes=max_nodes, maxDepth=max_depth,
                                                 hidden=hidden or None))
    return [Element._of(root) for root in result["tree"]]


def find(app: Optional[str] = None, window: Optional[str] = None, *, role: Optional[str] = None,
         name: Optional[str] = None, text: Optional[str] = None, value: Optional[str] = None,
         limit: int = 20, **state: bool) -> List[Element]:
    """The elements that match, e.g. find("Mail", role="button", name="Send", enabled=True)."""
    result = _call("zeblo_element_find", _query(app, window, role=role, name=name, text=text, value=value,
                                                 limit=limit, state=state or None))
    return [Element._of(m) for m in result["matches"]]


def wait_for(app: Optional[str] = None, window: Optional[str] = None, *, role: Optional[str] = None,
             name: Optional[str] = None, text: Optional[str] = None, until: str = "appears",
             equals: Optional[str] = None, timeout: float = 5.0) -> Optional[Element]:
    """Waits until an element appears (or disappears, is enabled, has the value `equals`)."""
    result = _call("zeblo_element_wait", _query(app, window, role=role, name=name, text=text, until=until,
                                                 equals=equals, timeout=int(max(0, timeout) * 1000)))
    return Element._of(result["element"]) if "element" in result else None


def press_keys(app: Optional[str], keys: str) -> None:
    """Presses keys by name: "ctrl+s", "ctrl+shift+t", "home", "ctrl+a backspace"."""
    _call("zeblo_press_keys", app or "", keys)


@dataclass
class Failure:
    """Why a call failed: kind, case and message (and, when known, the function and more detail)."""

    kind: str
    case: str
    message: str
    function: str = ""
    detail: str = ""


def last_failure() -> Optional[Failure]:
    """Why this thread's previous call (of any function) failed, or None when it did not."""
    value = _call("zeblo_last_failure")
    if value is None:
        return None
    return Failure(kind=value.get("kind", ""), case=value.get("case", ""), message=value.get("message", ""),
                   function=value.get("function", ""), detail=value.get("detail", ""))

"""The library's version and the name of its interface (ABI).

The version is written in one place, the library's header
(include/zeblo/zeblo.h: ZEBLO_VERSION_MAJOR, _MINOR and _PATCH), and read
from it here, in the source tree. A wheel holds its own copy of this file
with the values written out (python/build_backend/zeblo_build.py).
"""
import os
import re

_HEADER = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, os.pardir, "include", "zeblo",
                       "zeblo.h")


def _parts():
    with open(_HEADER, encoding="utf-8") as f:
        text = f.read()
    return [re.search(rf"^#define ZEBLO_VERSION_{part}\s+(\d+)", text, re.M).group(1)
            for part in ("MAJOR", "MINOR", "PATCH")]


_MAJOR, _MINOR, _PATCH = _parts()
VERSION = f"{_MAJOR}.{_MINOR}.{_PATCH}"
# While the major version is 0 a minor release may change the interface, so
# the library is libZEBLOui.so.0.1; from 1.0 on, libZEBLOui.so.1.
ABI = f"{_MAJOR}.{_MINOR}" if _MAJOR == "0" else _MAJOR

"""Runs the tests on the example desktop. The package from the source tree
uses the simulated library of a build tree (ZEBLO_BUILD_DIR, else build/);
an installed package uses its own. ZEBLO_LIBRARY and ZEBLO_SIMULATE may name
others."""
import os
from pathlib import Path

import zeblo

REPO = Path(__file__).resolve().parents[2]
FROM_SOURCE = Path(zeblo.__file__).resolve().parent == REPO / "python" / "zeblo"
os.environ.setdefault("ZEBLO_SIMULATE", str(REPO / "examples" / "desktop.json"))
if FROM_SOURCE and "ZEBLO_LIBRARY" not in os.environ:
    build = Path(os.environ.get("ZEBLO_BUILD_DIR", REPO / "build"))
    for name in ("libZEBLOui.dylib", "libZEBLOui.so", "libZEBLOuiPlus.dylib", "libZEBLOuiPlus.so"):
        if (build / "simulated" / name).exists():  # the superset library when it is there
            os.environ["ZEBLO_LIBRARY"] = str(build / "simulated" / name)

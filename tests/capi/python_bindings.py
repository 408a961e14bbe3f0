"""Prints what the Python package declares of the library, as JSON: the ctypes
result and argument types of each C function (read from _native's
declarations without loading the library) and the parameters of each public
function. Run with the package on the path."""
import inspect
import json
import types

import zeblo
from zeblo import _native


class Recorder:
    """Stands in for the loaded library: records what _declare sets."""

    def __init__(self):
        self.functions = {}

    def __getattr__(self, name):
        return self.functions.setdefault(name, types.SimpleNamespace())


library = Recorder()
_native._declare(library)
ctypes_of = {name: [getattr(f.restype, "__name__", None), [t.__name__ for t in f.argtypes]]
             for name, f in library.functions.items()}
functions = {}
for name in zeblo.__all__:
    value = getattr(zeblo, name)
    if inspect.isfunction(value) and value.__module__ == "zeblo":
        functions[name] = [{"name": p.name, "annotation": str(p.annotation), "keywordOnly": p.kind == p.KEYWORD_ONLY}
                           for p in inspect.signature(value).parameters.values()]
print(json.dumps({"ctypes": ctypes_of, "functions": functions}))

#!/usr/bin/env python3
"""Fails on any #include in src/ that runs upward or sideways between layers.

The layers, bottom to top: core, platform, ops, capi. A file may include its
own layer and the layers below it, with two narrower rules inside a layer:
- platform: a backend folder (sim/, linux/, macos/) uses the interface files
  of platform/ and its own folder, never another backend; default/ chooses
  among the backends and may include any of them;
- ops: an area folder (apps/, menus/, keyboard/, windows/) uses its own folder
  and the shared lookups directly in ops/, never another area.
The public header zeblo/zeblo.h belongs to capi.

    check_layers.py SRC_DIR
"""
import os, re, sys

RANK = {"core": 0, "platform": 1, "ops": 2, "capi": 3, "zeblo": 3}
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s+"([^"]+)"', re.M)


def folder(parts):
    """The sub-folder of a layer a path lies in, or None for the layer's own files."""
    return parts[1] if len(parts) > 2 else None


def allowed(source, target):
    """Whether src-relative `source` may include the quoted path `target`."""
    src, tgt = source.split("/"), target.split("/")
    if tgt[0] not in RANK:
        return True  # a system or third-party header
    if RANK[tgt[0]] != RANK[src[0]]:
        return RANK[tgt[0]] < RANK[src[0]]
    if src[0] == "capi" or tgt[0] != src[0]:
        return True
    mine, theirs = folder(src), folder(tgt)
    if theirs is None or theirs == mine:
        return True
    return src[0] == "platform" and mine == "default"


assert allowed("ops/menus/menu_ops.cpp", "ops/lookup.h") and not allowed("core/error.cpp", "platform/platform.h")
assert not allowed("ops/windows/a.cpp", "ops/apps/app_ops.h") and not allowed("platform/sim/a.cpp", "platform/linux/b.h")
assert not allowed("ops/lookup.cpp", "ops/menus/menu_ops.h") and not allowed("ops/apps/a.cpp", "zeblo/zeblo.h")


def main(root):
    bad = []
    for dirpath, _, names in os.walk(root):
        for name in sorted(names):
            path = os.path.join(dirpath, name)
            source = os.path.relpath(path, root).replace(os.sep, "/")
            if source.split("/")[0] not in RANK:
                continue
            with open(path, encoding="utf-8", errors="replace") as fh:
                text = fh.read()
            for m in INCLUDE.finditer(text):
                if not allowed(source, m.group(1)):
                    line = text.count("\n", 0, m.start()) + 1
                    bad.append(f"src/{source}:{line}: includes \"{m.group(1)}\" against the layering")
    print("\n".join(bad) if bad else "every include follows the layering")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

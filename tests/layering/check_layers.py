#!/usr/bin/env python3
"""Fails on any include in src/ that runs upward or sideways between layers.

The layers, bottom to top: core, platform, ops, capi. A file may include its
own layer and the layers below it, with narrower rules:
- platform: the interface is the files directly in platform/; a backend
  folder (sim/, linux/, macos/) uses the interface and its own folder, never
  another backend or default/; default/ chooses among the backends and may
  include any of them; the interface files include only the interface;
- ops: from platform, only the interface; an area folder (apps/, menus/,
  keyboard/, windows/) uses its own folder and the shared lookups directly in
  ops/, never another area; those shared files include no area.
The public header zeblo/zeblo.h belongs to capi.

Every form is read: #include, #include_next and #import, with "..." or <...>,
paths with ./ and ../ resolved against the including file's folder, and an
include whose name is not written out (a macro) is refused, since it cannot
be checked. The build enforces the layers too (each layer compiles against
include roots that hold only what it may see); this check also covers the
relative paths and the narrower rules.

    check_layers.py SRC_DIR
"""
import os
import posixpath
import re
import sys

RANK = {"core": 0, "platform": 1, "ops": 2, "capi": 3, "zeblo": 3}
DIRECTIVE = re.compile(r'^[ \t]*#[ \t]*(?:include|include_next|import)\b[ \t]*(.*)$', re.M)
NAMED = re.compile(r'^(?:"([^"]+)"|<([^>]+)>)')


def folder(parts):
    """The sub-folder of a layer a path lies in, or None for the layer's own files."""
    return parts[1] if len(parts) > 2 else None


def allowed(source, target):
    """Whether src-relative `source` may include the src-relative path `target`."""
    src, tgt = source.split("/"), target.split("/")
    if tgt[0] not in RANK:
        return True  # a system or third-party header
    if RANK[tgt[0]] != RANK[src[0]]:
        if RANK[tgt[0]] > RANK[src[0]]:
            return False
        return not (src[0] == "ops" and tgt[0] == "platform" and folder(tgt) is not None)
    if src[0] == "capi" or tgt[0] != src[0]:
        return True
    mine, theirs = folder(src), folder(tgt)
    if theirs is None or theirs == mine:
        return True
    return src[0] == "platform" and mine == "default"


def resolve(root, source, written, quoted):
    """The src-relative path an include names, or None for one outside src/.

    A quoted name is looked for beside the including file first, as the
    compiler does; then, like an angled one, from src/ (and include/ for the
    public header)."""
    if quoted:
        beside = posixpath.normpath(posixpath.join(posixpath.dirname(source), written))
        if not beside.startswith("../") and os.path.exists(os.path.join(root, beside)):
            return beside
        if beside.startswith("../") and beside.split("/")[1:2] == ["include"]:
            return posixpath.relpath(beside, "../include")
    path = posixpath.normpath(written)
    return path if path.split("/")[0] in RANK else None


def violations(root, source, text):
    """(line, what) for each include of `source` against the layering."""
    out = []
    for m in DIRECTIVE.finditer(text):
        line = text.count("\n", 0, m.start()) + 1
        named = NAMED.match(m.group(1))
        if named is None:
            out.append((line, f"includes {m.group(1).strip()!r}, a name the layering check cannot read"))
            continue
        written = named.group(1) or named.group(2)
        target = resolve(root, source, written, named.group(1) is not None)
        if target is not None and not allowed(source, target):
            out.append((line, f"includes \"{written}\" against the layering"))
    return out


def self_check():
    """The rules on the violations they must catch and the includes they must let pass."""
    assert allowed("ops/menus/menu_ops.cpp", "ops/lookup.h") and allowed("ops/lookup.cpp", "platform/platform.h")
    assert allowed("platform/default/default_platform.cpp", "platform/linux/linux_platform.h")
    assert allowed("capi/exports_menus.cpp", "zeblo/zeblo.h") and allowed("platform/sim/a.cpp", "core/error.h")
    assert not allowed("core/error.cpp", "platform/platform.h") and not allowed("core/error.cpp", "ops/lookup.h")
    assert not allowed("ops/windows/a.cpp", "ops/apps/app_ops.h") and not allowed("platform/sim/a.cpp", "platform/linux/b.h")
    assert not allowed("ops/lookup.cpp", "ops/menus/menu_ops.h") and not allowed("ops/apps/a.cpp", "zeblo/zeblo.h")
    assert not allowed("ops/apps/a.cpp", "platform/sim/sim_desktop.h") and not allowed("ops/lookup.h", "platform/linux/x.h")
    assert not allowed("platform/linux/a.cpp", "platform/default/no_desktop.h")
    assert not allowed("platform/platform.cpp", "platform/sim/sim_desktop.h")
    here = os.path.dirname(os.path.abspath(__file__))
    src = os.path.join(os.path.dirname(os.path.dirname(here)), "src")
    planted = {
        ("core/error.cpp", "#include <ops/lookup.h>\n"),
        ("core/error.cpp", '#include "../ops/lookup.h"\n'),
        ("core/error.cpp", "  #  include_next \"platform/platform.h\"\n"),
        ("ops/menus/menu_ops.cpp", '#include "../../platform/sim/sim_desktop.h"\n'),
        ("ops/menus/menu_ops.cpp", "#include <platform/linux/linux_platform.h>\n"),
        ("ops/menus/menu_ops.cpp", "#import \"../windows/window_ops.h\"\n"),
        ("platform/sim/sim_desktop.cpp", '#include "../linux/accessible.h"\n'),
        ("capi/marshal.cpp", "#include ZEBLO_SOMETHING\n"),
    }
    for source, text in planted:
        assert len(violations(src, source, text)) == 1, (source, text)
    assert not violations(src, "platform/sim/sim_desktop.cpp", '#include "sim_state.h"\n#include <vector>\n')


def main(root):
    self_check()
    bad = []
    for dirpath, _, names in os.walk(root):
        for name in sorted(names):
            path = os.path.join(dirpath, name)
            source = os.path.relpath(path, root).replace(os.sep, "/")
            if source.split("/")[0] not in RANK:
                continue
            with open(path, encoding="utf-8", errors="replace") as fh:
                text = fh.read()
            bad += [f"src/{source}:{line}: {what}" for line, what in violations(root, source, text)]
    print("\n".join(bad) if bad else "every include follows the layering")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

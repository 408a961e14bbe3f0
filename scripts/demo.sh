#!/usr/bin/env bash
# Installs what is missing, builds the zeblo tool, and drives the bundled
# example desktop (examples/desktop.json) through the library's exports.
set -euo pipefail
cd "$(dirname "$0")/.."
# Only what the library and the tool need, and only those two targets. A build
# directory configured already (by the test command, say) is built with its own
# options; a new one is configured without the tests and benchmarks and
# optimized for size without debug information, which compiles in about half
# the time.
scripts/install-deps.sh --build-only
build_log="$(mktemp)"
trap 'rm -f "$build_log"' EXIT
if [ -f build/CMakeCache.txt ]; then
  cmake --build build -j "$(nproc)" --target zeblo ZEBLOui ZEBLOui_simulated >"$build_log" 2>&1
else
  BUILD_DIR=build BUILD_TYPE=MinSizeRel BUILD_TARGETS="zeblo ZEBLOui ZEBLOui_simulated" scripts/build.sh \
    -DZEBLO_BUILD_TESTS=OFF -DZEBLO_BUILD_BENCH=OFF >"$build_log" 2>&1
fi || { cat "$build_log"; exit 1; }

desktop=examples/desktop.json
zeblo() { build/zeblo --simulate "$desktop" "$@"; }
# Prints a command line the way a shell would read it back.
echo_command() {
  printf '\n$ zeblo'
  printf ' %q' "$@"
  printf '\n'
}
show() {
  echo_command "$@"
  zeblo "$@" || true
}
trace() {
  echo_command --trace - "$@"
  build/zeblo --simulate "$desktop" --trace - "$@" 2>&1 || true
}

echo "== Applications =="
show apps
show frontmost
# -- apps --
trace focus Mail inbox 1 0 1000
trace focus Sketchpad "" 1 1 0
show launch Sketchpad
show in-text-field
# -- end apps --

# -- menus --
echo
echo "== Menus =="
show menus "Quick Notes"
show menu-exists "Quick Notes" Edit Find "Find Next"
show menu-enabled "Quick Notes" Edit Redo
trace menu-click "Quick Notes" File "Save As…"
# "Revert to Saved" refuses both the press and the pick: its actions are listed.
trace menu-click "Quick Notes" File "Revert to Saved"
# -- end menus --

# -- keyboard --
echo
echo "== Keyboard and text =="
# The text area "editor" of Quick Notes has the keyboard focus system-wide.
trace type 'Hi!' --mark
trace fill 'milk, eggs, bread' --enter
# The pasteboard holds plain text and rich text; both come back after a paste.
trace paste 'pasted text'
trace key 'Quick Notes' s 8
trace chord 0x100000 55 9
trace type 'café'
# -- end keyboard --

# -- windows --
echo
echo "== Windows and controls =="
show windows "Quick Notes"
show buttons "Quick Notes" groceries
show window-text Mail inbox
show popup-items "Quick Notes" "" "font size"
# The desktop's timeline opens "Export Complete" at 0.25 s of virtual time:
# the trace shows the 0.05 s polls and the clock at the end (the lookup's
# diagnostic log lines are left out here).
trace wait-window "Quick Notes" "Export Complete" 0 1000 | grep -v '"log"'
show click-button "Quick Notes" groceries share
show close-window "Quick Notes" settings 1000
show window-exists "Quick Notes" "no such window"
# -- end windows --

# -- python and mcp --
echo
echo "== From Python and from an AI agent (MCP) =="
# The Python package over the simulated library, on the same desktop.
printf '\n$ python3 examples/python/read_and_act.py\n'
ZEBLO_SIMULATE="$desktop" ZEBLO_LIBRARY=build/simulated/libZEBLOui.so PYTHONPATH=python \
  python3 examples/python/read_and_act.py
# One MCP exchange: the handshake, then a tool call, as an agent's client sends them.
printf '\n$ zeblo --simulate %s mcp   # two requests on standard input\n' "$desktop"
printf '%s\n' \
  '{"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2025-11-25","capabilities":{},"clientInfo":{"name":"demo","version":"1"}}}' \
  '{"jsonrpc":"2.0","method":"notifications/initialized"}' \
  '{"jsonrpc":"2.0","id":2,"method":"tools/call","params":{"name":"get_window_titles","arguments":{"app_name":"Quick Notes"}}}' |
  zeblo mcp | cut -c1-200
# -- end python and mcp --

# -- real desktop --
# With a display (and l3afpad, which `scripts/install-deps.sh --desktop`
# installs), the same tool drives a real application through the Linux
# backend: no --simulate. Nothing is typed, so the editor closes unasked.
echo
echo "== A real desktop =="
if [ -n "${DISPLAY:-}" ] && command -v l3afpad >/dev/null; then
  real() {
    echo_command "$@"
    build/zeblo "$@" || true
  }
  real launch l3afpad
  real wait-window l3afpad "" 0 20000
  real frontmost
  real menu-exists l3afpad Edit "Select All"
  printf '\n$ zeblo menus l3afpad | head -n 24\n'
  build/zeblo menus l3afpad | head -n 24
  real in-text-field
  real window-text l3afpad ""
  real close-window l3afpad "" 5000
  real wait-window l3afpad "" 1 10000
else
  echo "(no display or no l3afpad: skipped. In a headless session of its own:"
  echo "   scripts/install-deps.sh --build-only --desktop && scripts/desktop-session.sh scripts/demo.sh)"
fi
# -- end real desktop --

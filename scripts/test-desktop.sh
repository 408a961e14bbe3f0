#!/usr/bin/env bash
# Installs the desktop packages, builds, and runs the end-to-end tests against
# real GTK and Qt applications in a headless session; run without arguments,
# it also compares the menu snapshot of a Qt example with pyatspi's view.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --desktop
BUILD_DIR=${BUILD_DIR:-build} scripts/build.sh
scripts/desktop-session.sh "${BUILD_DIR:-build}/tests/test_linux_e2e" --gtest_brief=1 "$@"
# An agent's task through the MCP server and the official client (its npm
# packages are installed by the test command).
if [ $# -eq 0 ] && [ -d tests/mcp_client/node_modules ]; then
  echo "== an agent's task through the MCP server"
  ZEBLO_HELPER="$PWD/${BUILD_DIR:-build}/zeblo-helper" scripts/desktop-session.sh node tests/mcp_client/agent_scenario.mjs \
    "${BUILD_DIR:-build}/zeblo" \
    "$PWD/tests/linux_e2e/testapp.py"
fi
# The same applications natively on Wayland, with no X server, under sway
# (wlroots), mutter (GNOME) and KWin (KDE): the cases that do not need X11's
# own tools. weston offers no way to send keys: the keyboard calls fail with
# the reason.
if [ $# -eq 0 ]; then
  all="TestApp.*:*QtApp*:L3afpad.*:Gtk4App.TheEntry*:WaylandSession.*"
  for run in "sway:$all" "mutter:$all" "kwin:$all" "weston:WaylandSession.*"; do
    echo "== end to end on Wayland (${run%%:*})"
    scripts/wayland-session.sh "${run%%:*}" "${BUILD_DIR:-build}/tests/test_linux_e2e" --gtest_brief=1 \
      --gtest_filter="${run#*:}"
  done
  # Typing and key equivalents under a German layout set in the compositor.
  for compositor in sway mutter kwin; do
    echo "== end to end on Wayland ($compositor, German layout)"
    ZEBLO_WAYLAND_LAYOUT=de scripts/wayland-session.sh "$compositor" "${BUILD_DIR:-build}/tests/test_linux_e2e" \
      --gtest_brief=1 --gtest_filter="TestApp.EveryTypeable*:TestApp.TypingAnd*:TestApp.TypingFollows*:L3afpad.Typing*"
  done
fi
examples="/usr/lib/$(gcc -print-multiarch)/qt5/examples/widgets/mainwindows"
if [ $# -eq 0 ] && [ -x "$examples/menus/menus" ]; then
  scripts/desktop-session.sh tests/linux_e2e/compare_qt_menus.py "${BUILD_DIR:-build}/zeblo" "$examples/menus/menus" menus
fi

#!/usr/bin/env bash
# Installs the desktop packages, builds the Linux backend and its end-to-end
# tests, and runs them against real GTK applications in a headless session.
set -euo pipefail
cd "$(dirname "$0")/.."
desktop_packages=(
  xvfb at-spi2-core libatspi2.0-dev libxtst-dev libx11-dev dbus dbus-x11
  matchbox-window-manager gtk-3-examples l3afpad python3-gi gir1.2-gtk-3.0
)
scripts/install-deps.sh "${desktop_packages[@]}"
BUILD_DIR=${BUILD_DIR:-build-desktop}
cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD_DIR" --target test_linux_e2e -j2
scripts/desktop-session.sh "$BUILD_DIR/tests/test_linux_e2e" --gtest_brief=1

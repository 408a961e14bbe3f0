#!/usr/bin/env bash
# Installs the Debian packages the project builds and tests with, only those
# that are missing. Run as root (or with sudo available).
#
#   install-deps.sh [--build-only] [--desktop] [PACKAGE...]
#
# By default: what building and testing everything needs. --build-only
# narrows that to what the library and the zeblo tool need (the demo's set).
# --desktop adds what a headless desktop session and the real applications
# the end-to-end tests and the desktop benchmark drive need.
set -euo pipefail

build=(
  cmake ninja-build g++ pkg-config
  libicu-dev nlohmann-json3-dev
  libatspi2.0-dev libxtst-dev libx11-dev  # the Linux desktop backend
  libwayland-dev libxkbcommon-dev  # its Wayland side (wayland-scanner comes with libwayland-dev)
  python3  # the demo's Python example
)
tests=(
  clang libgtest-dev libgmock-dev libbenchmark-dev
  libclang-rt-14-dev  # sanitizer and libFuzzer runtimes for clang (hardening stage)
  libc++-dev libc++abi-dev  # clang builds the suite and the macOS backend's syntax check against libc++, as on a Mac
  python3-venv python3-pytest  # the Python package: installed into a virtual environment, tested with pytest
)
desktop=(
  xvfb at-spi2-core dbus dbus-x11 matchbox-window-manager util-linux procps
  gtk-3-examples l3afpad python3-gi gir1.2-gtk-3.0 python3-pyatspi
  x11-xkb-utils  # setxkbmap: the typing tests switch keyboard layouts
  chromium firefox-esr  # a web page read and driven through accessibility
  libgtk-4-dev   # the GTK 4 test application
  qtbase5-dev qt6-base-dev qtbase5-examples  # the Qt test application (Qt 5 and 6); Qt applications with menus
  sway mutter weston kwin-wayland qtwayland5 qt6-wayland  # headless Wayland sessions, and Qt on Wayland
  xdg-desktop-portal xdg-desktop-portal-gnome  # the desktop portal's remote desktop (GNOME's, under mutter)
)
packages=("${build[@]}" "${tests[@]}")
extra=()
for arg in "$@"; do
  case "$arg" in
    --build-only) packages=("${build[@]}") ;;
    --desktop) extra+=("${desktop[@]}") ;;
    *) extra+=("$arg") ;;
  esac
done

missing=()
for p in "${packages[@]}" "${extra[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
# Node.js and npm (the MCP server is tested with the official TypeScript SDK
# client) may come from elsewhere than Debian; only a machine without them
# gets Debian's.
if [ "${packages[*]}" != "${build[*]}" ] && ! command -v npm >/dev/null; then
  missing+=(nodejs npm)
fi
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

#!/usr/bin/env bash
# Installs the Debian packages the project builds and tests with, only those
# that are missing. Run as root (or with sudo available).
set -euo pipefail

packages=(
  cmake ninja-build g++ clang pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libicu-dev nlohmann-json3-dev
  libclang-rt-14-dev  # sanitizer and libFuzzer runtimes for clang (hardening stage)
)
extra=("$@")  # further packages a caller needs (e.g. the sanitizer runtime)

missing=()
for p in "${packages[@]}" "${extra[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

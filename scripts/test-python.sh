#!/usr/bin/env bash
# The Python package (python/): installed with pip, offline, into a fresh
# virtual environment (Debian's Python; the system's pytest is visible in it),
# its wheel carrying the libraries of BUILD_DIR (default: build), then tested
# with pytest on the example desktop through the simulated library it carries.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="$(cd "${BUILD_DIR:-build}" && pwd)"
python=/usr/bin/python3
[ -x "$python" ] || python=python3
venv="$build_dir/python-venv"
rm -rf "$venv"
"$python" -m venv --system-site-packages "$venv"
# --no-index: the package's build backend is in the tree and needs nothing;
# ZEBLO_BUILD_DIR: it takes the libraries from this build (without it, it
# builds them with CMake).
ZEBLO_BUILD_DIR="$build_dir" "$venv/bin/pip" install --quiet --no-index ./python
# Run from outside python/, so that the installed package is the one tested,
# with nothing pointing at the build.
cd "$build_dir"
env -u ZEBLO_LIBRARY -u ZEBLO_BUILD_DIR "$venv/bin/python" -m pytest -q -p no:cacheprovider "$OLDPWD/python/tests"

#!/usr/bin/env bash
# The Python package (python/): installed with pip, offline, into a fresh
# virtual environment (Debian's Python; the system's pytest is visible in it),
# then tested with pytest on the example desktop through the simulated
# library of BUILD_DIR (default: build).
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="$(cd "${BUILD_DIR:-build}" && pwd)"
python=/usr/bin/python3
[ -x "$python" ] || python=python3
venv="$build_dir/python-venv"
rm -rf "$venv"
"$python" -m venv --system-site-packages "$venv"
# --no-index: the package's build backend is in the tree and needs nothing.
"$venv/bin/pip" install --quiet --no-index ./python
# Run from outside python/, so that the installed package is the one tested.
cd "$build_dir"
ZEBLO_BUILD_DIR="$build_dir" "$venv/bin/python" -m pytest -q -p no:cacheprovider "$OLDPWD/python/tests"

#!/usr/bin/env bash
# Installs the desktop packages, builds, and runs the end-to-end tests against
# real GTK applications in a headless session.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --desktop
BUILD_DIR=${BUILD_DIR:-build} scripts/build.sh
scripts/desktop-session.sh "${BUILD_DIR:-build}/tests/test_linux_e2e" --gtest_brief=1 "$@"

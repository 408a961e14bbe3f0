#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --desktop
BUILD_DIR=build scripts/build.sh
ctest --test-dir build --output-on-failure -j "$(nproc)"
# The end-to-end suite against real GTK applications in a headless session.
echo "== end to end on a headless desktop"
scripts/desktop-session.sh build/tests/test_linux_e2e --gtest_brief=1
# Sanitizer builds (ASan+UBSan+LSan suite, TSan concurrency test) and fuzzing.
scripts/test-hardening.sh

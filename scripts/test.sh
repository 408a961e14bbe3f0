#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
BUILD_DIR=build scripts/build.sh
ctest --test-dir build --output-on-failure -j "$(nproc)"
# Sanitizer builds (ASan+UBSan+LSan suite, TSan concurrency test) and fuzzing.
scripts/test-hardening.sh

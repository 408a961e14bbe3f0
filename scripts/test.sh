#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --desktop
# Tests and benchmarks on, whatever an earlier demo configured; warnings fail.
BUILD_DIR=build scripts/build.sh -DZEBLO_BUILD_TESTS=ON -DZEBLO_BUILD_BENCH=ON -DZEBLO_LINUX_DESKTOP=ON \
  -DZEBLO_WERROR=ON
ctest --test-dir build --output-on-failure -j "$(nproc)"
# The installed package, used through find_package and through pkg-config.
BUILD_DIR=build scripts/test-package.sh
# The Python package, installed offline and tested on the simulated desktop.
echo "== Python package"
BUILD_DIR=build scripts/test-python.sh
# The MCP server, driven by the official TypeScript SDK client (npm).
echo "== MCP server with the official TypeScript SDK client"
(cd tests/mcp_client && npm ci --no-audit --no-fund --silent)
node tests/mcp_client/client_test.mjs build/zeblo examples/desktop.json
# The end-to-end suite against real GTK and Qt applications in a headless
# session, and a Qt menu bar compared with pyatspi's view of it (the build
# above is reused as it stands).
echo "== end to end on a headless desktop"
BUILD_DIR=build scripts/test-desktop.sh
# Sanitizer builds (ASan+UBSan+LSan suite, TSan concurrency test) and fuzzing.
scripts/test-hardening.sh

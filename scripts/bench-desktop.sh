#!/usr/bin/env bash
# Times the exports against real GTK applications next to the same walks
# done with pyatspi, in a headless desktop session. Extra arguments go to the
# benchmark (e.g. --benchmark_repetitions=9).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh --desktop
BUILD_DIR=${BUILD_DIR:-build} scripts/build.sh
scripts/desktop-session.sh "${BUILD_DIR:-build}/bench/zeblo_bench_desktop" \
  --benchmark_repetitions=5 --benchmark_report_aggregates_only=true "$@"

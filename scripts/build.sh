#!/usr/bin/env bash
# Configures and builds into BUILD_DIR (default: build). Extra arguments go to
# the configure step; BUILD_TARGETS (space-separated) builds only those
# targets instead of everything.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${BUILD_DIR:-build}"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" "${launcher[@]}" "$@" >/dev/null
targets=()
[ -n "${BUILD_TARGETS:-}" ] && read -r -a targets <<<"--target $BUILD_TARGETS"
cmake --build "$build_dir" -j "$(nproc)" "${targets[@]}"

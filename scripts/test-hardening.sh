#!/usr/bin/env bash
# The hardening stage of the test command, run after the normal suite:
#   1. the whole suite built with clang against libc++ (the compiler and the
#      standard library of a Mac), warnings as errors, with AddressSanitizer,
#      UndefinedBehaviorSanitizer and LeakSanitizer (build-asan; GoogleTest is
#      built from its sources with the same standard library), run with ctest,
#      and the end-to-end suite of that build in a headless desktop session;
#   2. the libFuzzer target of the same build, run for FUZZ_SECONDS (default
#      60) from the checked-in seed corpus;
#   3. the concurrency test built with ThreadSanitizer (build-tsan).
# Any compiler warning, sanitizer report, fuzzer crash or failed check fails
# the stage.
set -euo pipefail
cd "$(dirname "$0")/.."

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
configure() {  # DIR, then extra configure arguments
  local dir="$1"; shift
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEBLO_BUILD_BENCH=OFF \
    "${launcher[@]}" "$@" >/dev/null
}
jobs="$(nproc)"

# Reports are fatal and fail the process that made them.
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1"

echo "== hardening: clang + libc++, ASan + UBSan + LSan build of the whole suite (build-asan)"
CC=clang CXX=clang++ configure build-asan -DZEBLO_SANITIZE=address,undefined -DZEBLO_WERROR=ON \
  -DZEBLO_LIBCXX=ON -DZEBLO_GTEST_SOURCE=/usr/src/googletest -DZEBLO_BUILD_FUZZ=ON
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -j "$jobs"
# Full stacks for every allocation, so that the one suppression (a leak
# inside libatspi) matches only where it should.
ASAN_OPTIONS="$ASAN_OPTIONS:fast_unwind_on_malloc=0" \
  LSAN_OPTIONS="suppressions=$PWD/tests/linux_e2e/lsan.supp" \
  scripts/desktop-session.sh build-asan/tests/test_linux_e2e --gtest_brief=1

echo "== hardening: libFuzzer target (build-asan), ${FUZZ_SECONDS:-60} s"
# New inputs go to a scratch corpus; the checked-in seeds (regression cases
# included) are run first, read only. A crash leaves its input in
# build-asan/fuzz-artifacts/ to be added to tests/fuzz/corpus once fixed.
rm -rf build-asan/fuzz-corpus build-asan/fuzz-artifacts
mkdir -p build-asan/fuzz-corpus build-asan/fuzz-artifacts
build-asan/tests/fuzz/zeblo_fuzz -max_total_time="${FUZZ_SECONDS:-60}" -timeout=25 -rss_limit_mb=2048 \
  -print_final_stats=1 -artifact_prefix=build-asan/fuzz-artifacts/ \
  build-asan/fuzz-corpus tests/fuzz/corpus 2>build-asan/fuzz.log || { tail -n 80 build-asan/fuzz.log; exit 1; }
grep -E "^(Done|stat::number_of_executed_units|stat::peak_rss_mb)" build-asan/fuzz.log || true

echo "== hardening: TSan build of the concurrency test (build-tsan)"
configure build-tsan -DZEBLO_SANITIZE=thread
cmake --build build-tsan --target test_concurrency -j "$jobs"
build-tsan/tests/test_concurrency --gtest_brief=1
echo "== hardening: passed"

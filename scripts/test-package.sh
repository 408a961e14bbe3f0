#!/usr/bin/env bash
# Checks the installed package: installs BUILD_DIR (default: build) into a
# temporary prefix, then builds and runs the two example consumers against
# that prefix alone, one through find_package(ZEBLOui), one through
# pkg-config. Each prints the running applications ("[]" without a desktop);
# the second then runs again on the installed simulated library.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${BUILD_DIR:-build}"
tmp="$(mktemp -d)"
trap 'rm -rf "$tmp"' EXIT
prefix="$tmp/prefix"
# The consumers compile as strict C: the header must be clean for them too.
cflags="-std=c99 -Wall -Wextra -Wpedantic -Werror"

echo "== package: install $build_dir into a temporary prefix"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null
(cd "$prefix" && find . -type f -o -type l | sort)
if find "$prefix" -name 'libzeblo_*.a' | grep -q .; then
  echo "the layer archives must not be installed" >&2
  exit 1
fi
if [ -e "$build_dir/zeblo-helper" ] && ! find "$prefix" -path '*/zeblo/zeblo-helper' -perm -u+x | grep -q .; then
  echo "the library's helper executable is not installed" >&2
  exit 1
fi
if grep -rqF --include='*.cmake' --include='*.pc' "$PWD" "$prefix"; then
  echo "the installed package names the source tree" >&2
  exit 1
fi

echo "== package: find_package(ZEBLOui) consumer"
cmake -S examples/consumers/find_package -B "$tmp/find_package" \
  -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_FLAGS="$cflags" >/dev/null
cmake --build "$tmp/find_package" >/dev/null
"$tmp/find_package/list_apps"

echo "== package: pkg-config consumer"
pc="$(find "$prefix" -name zeblo.pc)"
# Only the prefix's own .pc files: the package needs no other.
export PKG_CONFIG_PATH="$(dirname "$pc")" PKG_CONFIG_LIBDIR="$(dirname "$pc")"
echo "zeblo $(pkg-config --modversion zeblo): $(pkg-config --cflags --libs zeblo)"
# shellcheck disable=SC2046,SC2086
cc $cflags examples/consumers/pkg-config/main.c $(pkg-config --cflags --libs zeblo) \
  -Wl,-rpath,"$(pkg-config --variable=libdir zeblo)" -o "$tmp/list_apps_pc"
"$tmp/list_apps_pc"

echo "== package: the same consumer, unchanged, on the simulated library"
sim="$(dirname "$(find "$prefix" -path '*/zeblo/simulated/libZEBLOui*' | head -n 1)")"
apps="$(LD_LIBRARY_PATH="$sim" DYLD_LIBRARY_PATH="$sim" ZEBLO_SIMULATE="$PWD/examples/desktop.json" \
  "$tmp/list_apps_pc")"
echo "$apps"
[ "$apps" = '["Finder","Quick Notes","Mail","Sync Helper"]' ] || { echo "the simulated desktop was not used" >&2; exit 1; }
echo "== package: passed"

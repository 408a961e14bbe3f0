#!/usr/bin/env bash
# Parses every Objective-C++ file of the macOS backend (src/platform/macos/*.mm)
# with clang against the declarations in tests/apple_sdk, on a machine without
# the Apple SDK. Nothing is linked or run: this catches code that would not
# compile on a Mac (a wrong type, a call that does not match its declaration,
# a missing bridge cast under ARC, the log line used as a format).
#
# Usage: syntax_check.sh [CLANGXX]        (default: clang++)
#
# Before the backend itself, the check proves that it can fail: a few small
# snippets with known mistakes must be rejected. Then it makes sure that no
# Core Foundation object is released by hand outside the RAII wrapper.
set -u

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
cxx="${1:-clang++}"
backend="$root/src/platform/macos"

flags=(
  -fsyntax-only -x objective-c++ -std=c++20
  -fobjc-arc -fobjc-exceptions -fobjc-runtime=macosx-13.0
  -isystem "$root/tests/apple_sdk" -I "$root/src" -I "$root/include"
  -Wall -Wextra -Wpedantic -Werror -Wformat-security -Wno-unused-command-line-argument
)

failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# --- The check can fail ----------------------------------------------------------
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

# Compiles the snippet `code` after the backend's header; its output goes to
# $scratch/NAME.out.
compiles() {  # name, code
  local file="$scratch/$1.mm"
  {
    echo '#include "platform/macos/mac_platform.h"'
    echo "$2"
  } > "$file"
  "$cxx" "${flags[@]}" "$file" > "$scratch/$1.out" 2>&1
}

must_reject() {  # name, code
  if compiles "$1" "$2"; then
    fail "the deliberate mistake '$1' was accepted"
  else
    echo "ok: rejects $1"
  fi
}

must_accept() {  # name, code
  if compiles "$1" "$2"; then
    echo "ok: accepts $1"
  else
    fail "the correct snippet '$1' was rejected:"
    cat "$scratch/$1.out"
  fi
}

must_accept "log-line-as-argument" \
  'void f(NSString* line) { NSLog(@"%@", line); }'
must_reject "log-line-as-format" \
  'void f(NSString* line) { NSLog(line); }'
must_reject "cf-to-objc-without-bridge" \
  'NSString* f(CFStringRef s) { return (NSString*)s; }'
must_reject "string-where-element-expected" \
  'void f(CFStringRef s, CFStringRef a) { CFTypeRef v; AXUIElementCopyAttributeValue(s, a, &v); }'
must_reject "copy-without-output-slot" \
  'void f(AXUIElementRef e, CFStringRef a) { AXUIElementCopyAttributeValue(e, a); }'
must_reject "undeclared-framework-call" \
  'void f(AXUIElementRef e) { CFArrayRef n; AXUIElementCopyParameterizedAttributeNames(e, &n); }'

# --- No hand-written releases ---------------------------------------------------------
# Core Foundation objects are released by ScopedCF, and handles by
# MacPlatform::releaseHandle; nowhere else.
while IFS= read -r hit; do
  case "$hit" in
    */scoped_cf.h:*|*/mac_platform.mm:*) ;;
    *) fail "CFRelease outside the RAII wrapper: $hit" ;;
  esac
done < <(grep -Hn 'CFRelease *(' "$backend"/*.mm "$backend"/*.h 2>/dev/null)

# --- The backend ------------------------------------------------------------------------
shopt -s nullglob
sources=("$backend"/*.mm)
if [ "${#sources[@]}" -eq 0 ]; then
  fail "no Objective-C++ sources in $backend"
fi
for source in "${sources[@]}"; do
  if "$cxx" "${flags[@]}" "$source"; then
    echo "ok: ${source#"$root"/}"
  else
    fail "${source#"$root"/} does not parse"
  fi
done

if [ "$failures" -ne 0 ]; then
  echo "$failures failure(s)"
  exit 1
fi
echo "macOS backend: ${#sources[@]} files parse"

#!/usr/bin/env bash
# Compiles every Objective-C++ file of the macOS backend (src/platform/macos/*.mm)
# with clang for an Apple target, against the declarations in tests/apple_sdk
# (which carry Apple's nullability and availability annotations), on a machine
# without the Apple SDK. Nothing is linked or run: this catches code that would
# not compile on a Mac (a wrong type, a call that does not match its
# declaration, a missing bridge cast under ARC, the log line used as a format,
# a null where Apple forbids one, an API newer than the deployment target
# called without @available).
#
# Usage: syntax_check.sh [CLANGXX [DEPLOYMENT_TARGET]]   (defaults: clang++, 11.0)
#
# The declarations come in two views, of the SDK of Xcode 15.4 (macOS 14.5,
# the oldest Xcode the project builds with) and of the macOS 15.4 SDK
# (ZEBLO_SDK_VERSION, which sets __MAC_OS_X_VERSION_MAX_ALLOWED and leaves
# out what the older SDK lacks). Each file is compiled three times: for the
# deployment target against each view, with BOOL as on Intel (signed char)
# and as on Apple silicon (bool), and for macOS 15.4, where whatever was
# deprecated up to it (macOS 14's activation options, say) is an error.
# libc++ is the standard library, as on a Mac; the C library's headers are
# this machine's.
#
# The live Mac tests (tests/macos_live) are compiled as well, for the
# deployment target against both views.
#
# Before the backend itself, the check proves that it can fail: a few small
# snippets with known mistakes must be rejected. Then it makes sure that no
# Core Foundation object is released by hand outside the RAII wrapper.
set -u

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
cxx="${1:-clang++}"
minimum="${2:-11.0}"
backend="$root/src/platform/macos"
multiarch="$(gcc -print-multiarch 2>/dev/null || echo x86_64-linux-gnu)"

flags=(
  -fsyntax-only -x objective-c++ -std=c++20 -stdlib=libc++
  -fobjc-arc -fobjc-exceptions
  # Apple's clang spells _Nonnull as __nonnull, which glibc uses for its own
  # attribute macro; _GNU_SOURCE is what libc++ expects of glibc, whose
  # ctype macros would stand in for the *_l functions libc++ calls on Apple.
  -U__nonnull -D_GNU_SOURCE -D__NO_CTYPE -idirafter "/usr/include/$multiarch"
  -isystem "$root/tests/apple_sdk" -I "$root/src" -I "$root/include"
  -Wall -Wextra -Wpedantic -Werror -Wformat-security -Wunguarded-availability -Wno-unused-command-line-argument
)
sdk14=-DZEBLO_SDK_VERSION=140500
sdk15=-DZEBLO_SDK_VERSION=150400
oldest=(-target "x86_64-apple-macos$minimum" "$sdk15")
targets=(
  "-target x86_64-apple-macos$minimum $sdk14"
  "-target x86_64-apple-macos$minimum $sdk15 -DZEBLO_SDK_BOOL_IS_BOOL"
  "-target x86_64-apple-macos15.4 $sdk15"
)
live_targets=(
  "-target x86_64-apple-macos$minimum $sdk14"
  "-target x86_64-apple-macos$minimum $sdk15"
)

failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# --- The check can fail ----------------------------------------------------------
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

# Compiles the snippet `code` after the backend's header, for the oldest
# target or for the one given after it; its output goes to $scratch/NAME.out.
compiles() {  # name, code, [target flags...]
  local file="$scratch/$1.mm" code="$2"
  shift 2
  {
    echo '#include "platform/macos/mac_platform.h"'
    echo "$code"
  } > "$file"
  if [ $# -eq 0 ]; then set -- "${oldest[@]}"; fi
  "$cxx" "${flags[@]}" "$@" "$file" > "$scratch/$(basename "$file" .mm).out" 2>&1
}

must_reject() {  # name, code, [target flags...]
  if compiles "$@"; then
    fail "the deliberate mistake '$1' was accepted"
  else
    echo "ok: rejects $1"
  fi
}

must_accept() {  # name, code, [target flags...]
  if compiles "$@"; then
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
must_reject "null-where-apple-forbids-it" \
  'void f() { [NSPasteboard.generalPasteboard setString:nil forType:@"public.utf8-plain-text"]; }'
must_reject "macos-14-call-without-available" \
  'void f(NSRunningApplication* a) { [NSApp yieldActivationToApplication:a]; }'
must_accept "macos-14-call-with-available" \
  'void f(NSRunningApplication* a) { if (@available(macOS 14.0, *)) [NSApp yieldActivationToApplication:a]; }'
must_accept "option-deprecated-in-macos-14-before-it" \
  'NSApplicationActivationOptions f() { return NSApplicationActivateIgnoringOtherApps; }'
must_reject "option-deprecated-in-macos-14" \
  'NSApplicationActivationOptions f() { return NSApplicationActivateIgnoringOtherApps; }' \
  -target x86_64-apple-macos15.4
must_reject "objc-bool-as-int-on-apple-silicon" \
  'static_assert(sizeof(BOOL) == 1 && static_cast<BOOL>(2) == 2, "BOOL is a signed char");' \
  -target "x86_64-apple-macos$minimum" "$sdk15" -DZEBLO_SDK_BOOL_IS_BOOL
# What the macOS 15.4 SDK added is missing from the older one, @available or
# not; the SDK version guards it.
must_reject "sdk-15.4-property-with-the-14.5-sdk" \
  'bool f() { if (@available(macOS 15.4, *)) return NSPasteboard.generalPasteboard.accessBehavior == 0; return true; }' \
  -target "x86_64-apple-macos$minimum" "$sdk14"
must_accept "sdk-15.4-property-behind-the-sdk-version" \
  '#if __MAC_OS_X_VERSION_MAX_ALLOWED >= 150400
bool f() { if (@available(macOS 15.4, *)) return NSPasteboard.generalPasteboard.accessBehavior == 0; return true; }
#endif' \
  -target "x86_64-apple-macos$minimum" "$sdk14"

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
sources=("$backend"/*.mm "$backend"/*.cpp)
if [ "${#sources[@]}" -eq 0 ]; then
  fail "no Objective-C++ sources in $backend"
fi
for source in "${sources[@]}"; do
  for target in "${targets[@]}"; do
    read -r -a target_flags <<<"$target"
    if "$cxx" "${flags[@]}" "${target_flags[@]}" "$source"; then
      echo "ok: ${source#"$root"/} ($target)"
    else
      fail "${source#"$root"/} does not compile ($target)"
    fi
  done
done

# --- The live tests -------------------------------------------------------------------
# They run only on a Mac, by hand: compiling them here keeps them compiling.
for source in "$root"/tests/macos_live/*.mm; do
  for target in "${live_targets[@]}"; do
    read -r -a target_flags <<<"$target"
    if "$cxx" "${flags[@]}" "${target_flags[@]}" "$source"; then
      echo "ok: ${source#"$root"/} ($target)"
    else
      fail "${source#"$root"/} does not compile ($target)"
    fi
  done
done

# --- The module map -------------------------------------------------------------------
# A Swift host imports the header as the module ZEBLOui; an Objective-C file
# that imports it the same way proves the map names the header and its calls.
printf '@import ZEBLOui;\nvoid f(void) { zeblo_free_string(zeblo_get_running_apps()); }\n' > "$scratch/module.m"
if "$cxx" -x objective-c -fsyntax-only -fmodules -fmodules-cache-path="$scratch/modules" -I "$root/include/zeblo" \
     -Wall -Werror "${oldest[@]}" -isystem "$root/tests/apple_sdk" -idirafter "/usr/include/$multiarch" \
     "$scratch/module.m" > "$scratch/module.out" 2>&1; then
  echo "ok: @import ZEBLOui"
else
  fail "the module map does not give the C interface:"
  cat "$scratch/module.out"
fi

if [ "$failures" -ne 0 ]; then
  echo "$failures failure(s)"
  exit 1
fi
echo "macOS backend: ${#sources[@]} files compile for ${#targets[@]} targets against both SDK views"

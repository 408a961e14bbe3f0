#!/bin/sh
# Opens the test page in Chromium, with a throwaway profile and no
# accessibility flags: the library switches accessibility on by itself.
profile=$(mktemp -d /tmp/zeblo-chromium.XXXXXX)
exec chromium --no-sandbox --no-first-run --disable-gpu --user-data-dir="$profile" \
  "file://$(dirname "$(readlink -f "$0")")/page.html"

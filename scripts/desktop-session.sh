#!/usr/bin/env bash
# Runs CMD... inside a headless desktop session: Xvfb, a small window manager
# (matchbox) and a session bus, with their own HOME and XDG_RUNTIME_DIR. The
# session ends with CMD and exits with its status; nothing started in it
# (services the bus activates included) outlives it:
# - normally the session runs in a new PID namespace, which the kernel empties
#   when it ends;
# - where namespaces are not permitted (some containers), every process of the
#   session carries a tag in its environment, and the processes with that tag
#   are ended when CMD ends.
#
#   scripts/desktop-session.sh ./build/tests/test_linux_e2e
set -euo pipefail
[ $# -gt 0 ] || { echo "usage: $0 CMD [ARG...]" >&2; exit 2; }

if [ -z "${ZEBLO_DESKTOP_SESSION:-}" ]; then
  if unshare --pid --fork --kill-child --mount-proc true 2>/dev/null; then
    exec env ZEBLO_DESKTOP_SESSION=ns unshare --pid --fork --kill-child --mount-proc bash "$0" "$@"
  fi
  export ZEBLO_DESKTOP_SESSION="tag-$$-$RANDOM$RANDOM"
fi

tmp=$(mktemp -d /tmp/zeblo-session.XXXXXX)
end_session() {
  if [ "$ZEBLO_DESKTOP_SESSION" != "ns" ]; then
    local tag="ZEBLO_DESKTOP_SESSION=$ZEBLO_DESKTOP_SESSION" pids=() p
    for p in /proc/[0-9]*; do
      [ "${p#/proc/}" != "$$" ] && { tr '\0' '\n' <"$p/environ"; } 2>/dev/null | grep -qx "$tag" && pids+=("${p#/proc/}")
    done
    [ ${#pids[@]} -eq 0 ] || kill "${pids[@]}" 2>/dev/null || true
  fi
  rm -rf "$tmp"
}
trap end_session EXIT
export HOME="$tmp/home" XDG_RUNTIME_DIR="$tmp/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
unset DBUS_SESSION_BUS_ADDRESS NO_AT_BRIDGE GTK_MODULES

# Xvfb picks a free display and writes its number to the given descriptor.
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$tmp/display" >"$tmp/xvfb.log" 2>&1 &
for _ in $(seq 1 200); do
  [ -s "$tmp/display" ] && break
  sleep 0.05
done
[ -s "$tmp/display" ] || { echo "Xvfb did not start" >&2; cat "$tmp/xvfb.log" >&2; exit 1; }
export DISPLAY=":$(head -n1 "$tmp/display")"

matchbox-window-manager -use_titlebar no >"$tmp/wm.log" 2>&1 &

# The session bus; at-spi-bus-launcher and registryd are activated on first
# use. The bus and the services it starts write to a log, which is shown only
# when CMD fails; CMD gets this script's own output and error streams (held
# on descriptors 3 and 4 on the way in), so nothing stands between CMD and
# its caller.
status=0
dbus-run-session -- bash -c 'exec "$@" 1>&3 2>&4 3>&- 4>&-' cmd "$@" 3>&1 4>&2 >"$tmp/bus.log" 2>&1 || status=$?
if [ "$status" -ne 0 ] && grep -qv -e '^dbus-daemon\[' -e '^SpiRegistry daemon' "$tmp/bus.log"; then
  echo "-- the session's own log:" >&2
  grep -v -e '^dbus-daemon\[' -e '^SpiRegistry daemon' "$tmp/bus.log" >&2
fi
exit "$status"

#!/usr/bin/env bash
# Runs CMD... inside a headless Wayland session with no X server: a
# compositor (sway, mutter, weston or KWin, without a GPU), a session bus and the
# accessibility bus, with their own HOME and XDG_RUNTIME_DIR. Applications
# started in it run natively on Wayland (GDK_BACKEND=wayland,
# QT_QPA_PLATFORM=wayland). The session ends with CMD and exits with its
# status; as in desktop-session.sh, it runs in a PID namespace of its own
# where that is permitted, so that nothing started in it outlives it.
#
# sway will not run as root: run as root, the session (CMD included) runs as
# the unprivileged user nobody, which must be able to read CMD and its files.
#
# Under KWin, CMD's program is trusted with KWin's fake input (a desktop
# file in the session's HOME says so). ZEBLO_WAYLAND_LAYOUT (e.g. de) gives
# the compositor that keyboard layout (sway and KWin from their settings,
# mutter from a stand-in for localed, scripts/locale1.py).
#
#   scripts/wayland-session.sh sway|mutter|weston|kwin CMD [ARG...]
set -euo pipefail
[ $# -gt 1 ] || { echo "usage: $0 sway|mutter|weston|kwin CMD [ARG...]" >&2; exit 2; }
compositor=$1
shift
case "$compositor" in sway | mutter | weston | kwin) ;; *) echo "unknown compositor: $compositor" >&2; exit 2 ;; esac
self=$(readlink -f "$0")

if [ "${ZEBLO_WAYLAND_STAGE:-}" = "" ]; then
  if unshare --pid --fork --kill-child --mount-proc true 2>/dev/null; then
    exec env ZEBLO_WAYLAND_STAGE=user unshare --pid --fork --kill-child --mount-proc bash "$self" "$compositor" "$@"
  fi
  export ZEBLO_WAYLAND_STAGE=user
fi

if [ "$ZEBLO_WAYLAND_STAGE" = "user" ]; then
  tmp=$(mktemp -d /tmp/zeblo-wayland.XXXXXX)
  chmod 755 "$tmp"
  mkdir -p "$tmp/home" "$tmp/run"
  chmod 700 "$tmp/run"
  as=()
  if [ "$(id -u)" -eq 0 ]; then
    chown -R nobody:nogroup "$tmp/home" "$tmp/run"
    as=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
  fi
  status=0
  env -u DISPLAY -u DBUS_SESSION_BUS_ADDRESS -u NO_AT_BRIDGE -u GTK_MODULES -u WAYLAND_DISPLAY -u SWAYSOCK \
    HOME="$tmp/home" XDG_RUNTIME_DIR="$tmp/run" ZEBLO_WAYLAND_STAGE=session ZEBLO_WAYLAND_TMP="$tmp" \
    "${as[@]}" dbus-run-session -- bash "$self" "$compositor" "$@" || status=$?
  rm -rf "$tmp" 2>/dev/null || true
  exit "$status"
fi

# Inside the session bus, as the session's user.
tmp=$ZEBLO_WAYLAND_TMP
export XDG_SESSION_TYPE=wayland GDK_BACKEND=wayland QT_QPA_PLATFORM=wayland ZEBLO_WAYLAND_COMPOSITOR=$compositor
layout=${ZEBLO_WAYLAND_LAYOUT:-}
case "$compositor" in
  sway)
    printf 'xwayland disable\noutput HEADLESS-1 resolution 1280x720\n' >"$tmp/run/sway.conf"
    [ -z "$layout" ] || printf 'input type:keyboard xkb_layout %s\n' "$layout" >>"$tmp/run/sway.conf"
    WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman \
      sway -c "$tmp/run/sway.conf" >"$tmp/run/compositor.log" 2>&1 &
    ;;
  mutter)
    export XDG_CURRENT_DESKTOP=GNOME  # the desktop portal's backend: GNOME's
    system=()
    if [ -n "$layout" ]; then
      # mutter takes its layout from localed on the system bus: a stand-in
      # on the session bus, which mutter is given as its system bus.
      coproc locale1 { exec "$(dirname "$self")/locale1.py" "$layout"; }
      read -r -t 10 _ <&"${locale1[0]}"
      system=(env DBUS_SYSTEM_BUS_ADDRESS="$DBUS_SESSION_BUS_ADDRESS")
    fi
    "${system[@]}" mutter --wayland --headless --no-x11 --virtual-monitor 1280x720 >"$tmp/run/compositor.log" 2>&1 &
    ;;
  weston) weston --backend=headless-backend.so >"$tmp/run/compositor.log" 2>&1 & ;;
  kwin)
    # KWin announces fake input only to programs a desktop file trusts with
    # it: CMD's program is (as a user would allow a host).
    program=$(readlink -f "$(command -v "$1")")
    mkdir -p "$HOME/.local/share/applications"
    printf '[Desktop Entry]\nType=Application\nName=ZEBLOui host\nNoDisplay=true\nExec=%s\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n' \
      "$program" >"$HOME/.local/share/applications/zeblo-host.desktop"
    # KWin looks the desktop file up in KDE's service cache: built now, not
    # while a client waits for KWin's first answer.
    kbuildsycoca5 --noincremental >/dev/null 2>&1 || true
    # A copy without the file capability (cap_sys_resource) the installed
    # binary carries: exec refuses it where the capability bounding set
    # lacks it (containers), and a headless session needs none.
    cp /usr/bin/kwin_wayland "$tmp/run/kwin_wayland"
    if [ -n "$layout" ]; then
      mkdir -p "$HOME/.config"
      printf '[Layout]\nUse=true\nLayoutList=%s\n' "$layout" >"$HOME/.config/kxkbrc"
    fi
    # QPainter compositing: OpenGL on llvmpipe sets itself up after KWin's
    # bus name appears and, on a busy machine, held the first client past 1 s.
    KWIN_COMPOSE=Q "$tmp/run/kwin_wayland" --virtual --no-lockscreen --width 1280 --height 720 \
      >"$tmp/run/compositor.log" 2>&1 &
    ;;
esac
compositor_pid=$!
for _ in $(seq 1 200); do
  socket=$(cd "$XDG_RUNTIME_DIR" && ls wayland-[0-9]* 2>/dev/null | grep -v lock | head -n1 || true)
  [ -n "$socket" ] && break
  sleep 0.05
done
[ -n "$socket" ] || { echo "$compositor did not start" >&2; cat "$tmp/run/compositor.log" >&2; exit 1; }
export WAYLAND_DISPLAY=$socket
if [ "$compositor" = sway ]; then
  for _ in $(seq 1 100); do
    SWAYSOCK=$(ls "$XDG_RUNTIME_DIR"/sway-ipc.*.sock 2>/dev/null | head -n1 || true)
    [ -n "$SWAYSOCK" ] && break
    sleep 0.05
  done
  export SWAYSOCK
fi
if [ "$compositor" = kwin ]; then
  # KWin makes its socket before it answers on it: wait for its bus name.
  for _ in $(seq 1 200); do
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner \
      string:org.kde.KWin 2>/dev/null | grep -q "boolean true" && break
    sleep 0.05
  done
fi
/usr/libexec/at-spi-bus-launcher --launch-immediately >"$tmp/run/atspi.log" 2>&1 &
status=0
"$@" || status=$?
kill "$compositor_pid" 2>/dev/null || true
# Gone before its files are removed (KWin still writes its settings as it ends).
for _ in $(seq 1 100); do
  kill -0 "$compositor_pid" 2>/dev/null || break
  sleep 0.05
done
if [ "$status" -ne 0 ]; then
  echo "-- the compositor's log (last lines):" >&2
  tail -n 20 "$tmp/run/compositor.log" >&2
fi
exit "$status"

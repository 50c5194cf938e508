#!/usr/bin/env bash
# Closing the window while the tray icon is shown keeps Sondrel running in the tray, checked on a
# real X server (Xvfb) with a real XEmbed system tray (trayer): the app starts, Ctrl+W closes its
# window (the close button's path), the process must live on with no window mapped and its icon
# docked, a click on the icon must bring the window back, and Ctrl+Q must end the process.
# Screenshots of the three states go to OUT. Installs trayer, xdotool, xwd and ImageMagick when
# missing (as root). Only a throwaway home under /tmp is scanned.
#
# Usage: tests/manual/tray_close_check.sh [BUILD_DIR] [OUT]
#   BUILD_DIR  a build with the app (default build/ci)
#   OUT        where the screenshots go (default /tmp/sondrel-tray-check)
set -euo pipefail
cd "$(dirname "$0")/../.."
build=${1:-build/ci}
out=${2:-/tmp/sondrel-tray-check}
app=$build/ui/sondrel
[[ -x $app ]] || { echo "tray check: no app at $app (build it first)" >&2; exit 2; }
if ! command -v trayer >/dev/null || ! command -v xdotool >/dev/null ||
   ! command -v xwd >/dev/null || ! [[ -x /usr/bin/convert ]]; then
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq trayer xdotool x11-apps imagemagick >/dev/null
fi
mkdir -p "$out"
work=$(mktemp -d)
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

export DISPLAY=:93
Xvfb "$DISPLAY" -screen 0 1400x900x24 -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
trayer --edge top --align right --widthtype request --height 32 --transparent false \
  --tint 0x303540 --SetDockType true >/dev/null 2>&1 &
pids+=($!)
sleep 1

shot() { xwd -root -silent | /usr/bin/convert xwd:- "$out/$1"; echo "tray check: $out/$1"; }
fail() { echo "tray check: FAILED: $*" >&2; exit 1; }
windowShown() { xdotool search --onlyvisible --name '^Sondrel$' 2>/dev/null | head -n 1; }

mkdir -p "$work/home/Documents"
head -c 3000000 /dev/zero >"$work/home/Documents/report.pdf"
HOME=$work/home XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=xcb dbus-run-session -- "$app" \
  >"$work/app.log" 2>&1 &
pids+=($!)
appPid=$!
window=""
for _ in $(seq 100); do window=$(windowShown) && [[ -n $window ]] && break; sleep 0.2; done
[[ -n $window ]] || fail "the window never appeared ($(cat "$work/app.log"))"
sleep 2
shot tray-1-window.png

xdotool windowfocus --sync "$window"
xdotool key ctrl+w
sleep 2
# dbus-run-session is the parent: the app is its child.
kill -0 "$appPid" 2>/dev/null || fail "closing the window ended Sondrel"
[[ -z $(windowShown) ]] || fail "the window is still shown after Ctrl+W"
shot tray-2-closed-to-tray.png

# The tray panel (trayer's 32-pixel-high window; its other one is a small hidden leader) holds one
# icon: a click in its middle brings the window back.
for candidate in $(xdotool search --class trayer); do
  eval "$(xdotool getwindowgeometry --shell "$candidate")"
  [[ $HEIGHT == 32 ]] && break
done
[[ $HEIGHT == 32 ]] || fail "no tray panel found"
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
window=""
for _ in $(seq 25); do window=$(windowShown) && [[ -n $window ]] && break; sleep 0.2; done
[[ -n $window ]] || fail "a click on the tray icon did not bring the window back"
sleep 1
shot tray-3-reopened.png

xdotool windowfocus --sync "$window"
xdotool key ctrl+q
for _ in $(seq 50); do kill -0 "$appPid" 2>/dev/null || break; sleep 0.2; done
kill -0 "$appPid" 2>/dev/null && fail "Ctrl+Q did not end Sondrel"
echo "tray check: passed"

#!/usr/bin/env bash
# Starts the editor under a virtual X server on the bundled sample, waits for
# its window, saves a screenshot and ends the editor.
#
#   tools/screenshot.sh [OUTPUT.png] [FILE...]
#
# OUTPUT defaults to build/zy-screenshot.png, FILE to build/samples/demo.fsh.
# BUILD (default: build) names the build folder that holds bin/zy. The
# editor's settings go to a fresh temporary folder, never to the user's own.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${BUILD:-build}
output=${1:-$build/zy-screenshot.png}
shift || true
files=("$@")
[ ${#files[@]} -eq 0 ] && files=("$build/samples/demo.fsh")

zy=$build/bin/zy
[ -x "$zy" ] || { echo "screenshot: $zy is missing; build the editor first" >&2; exit 1; }
for f in "${files[@]}"; do
    [ -f "$f" ] || { echo "screenshot: $f is missing" >&2; exit 1; }
done
for tool in Xvfb import xdpyinfo; do
    command -v "$tool" >/dev/null || { echo "screenshot: $tool is not installed" >&2; exit 1; }
done

scratch=$(mktemp -d)
xvfb_pid=""
zy_pid=""
cleanup() {
    [ -n "$zy_pid" ] && kill "$zy_pid" 2>/dev/null || true
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true
    rm -rf "$scratch"
}
trap cleanup EXIT

# A free display number.
display=99
while [ -e "/tmp/.X11-unix/X$display" ] || [ -e "/tmp/.X$display-lock" ]; do
    display=$((display + 1))
done

Xvfb ":$display" -screen 0 1280x860x24 -nolisten tcp >"$scratch/xvfb.log" 2>&1 &
xvfb_pid=$!
for attempt in $(seq 50); do
    DISPLAY=":$display" xdpyinfo >/dev/null 2>&1 && break
    sleep 0.1
done

export DISPLAY=":$display"
export XDG_CONFIG_HOME="$scratch/config"
export XDG_RUNTIME_DIR="$scratch/runtime"
mkdir -p "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
export QT_QPA_PLATFORM=xcb

"$zy" "${files[@]}" >"$scratch/zy.log" 2>&1 &
zy_pid=$!

# Wait for a mapped window of reasonable size (the main frame).
shown=""
for attempt in $(seq 100); do
    if ! kill -0 "$zy_pid" 2>/dev/null; then
        echo "screenshot: the editor ended early:" >&2
        cat "$scratch/zy.log" >&2
        exit 1
    fi
    if command -v xwininfo >/dev/null; then
        if xwininfo -root -children 2>/dev/null | grep -q '"Zy'; then shown=1; break; fi
    elif [ -s "$scratch/zy.log" ] || [ "$attempt" -ge 30 ]; then
        shown=1
        break
    fi
    sleep 0.1
done
[ -n "$shown" ] || echo "screenshot: no window seen; taking the screen as it is" >&2
sleep "${SETTLE:-1.5}" # let the first paints finish

mkdir -p "$(dirname "$output")"
import -window root "$output"
echo "$output"

#!/usr/bin/env bash
# Times Zy's Size module against ImageMagick, libvips and Pillow on the same
# Lanczos resizes, one thread each, and prints each tool's time beside ours
# with the ratio (their time / ours: above 1 means Zy is faster).
#
#   bench/compare_resize.sh [BUILD_DIR] [REPEATS]
#
# BUILD_DIR is a build configured with -DZY_BUILD_BENCH=ON in Release and
# holding bin/zy_resize (default: build-bench next to the repository).
# The cases: 4096 x 4096 reduced to 1024 x 1024, and 512 x 512 enlarged to
# 2048 x 2048, 8-bit RGBA from /dev/urandom.
#
# Times are CPU seconds (user + system), best of REPEATS, so that other
# work on a shared machine does not count against anyone. For the outside
# tools, the same command without the resize (load and save only) is timed
# too and taken off; Pillow and Zy time the resize call alone in-process.
# The script installs nothing: a missing tool is reported and skipped.

set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../../build-bench}"
repeats="${2:-5}"
zy="$build/bin/zy_resize"

if [[ ! -x "$zy" ]]; then
    echo "no $zy: configure and build it first:" >&2
    echo "  cmake -S $here/.. -B $build -G Ninja -DCMAKE_BUILD_TYPE=Release -DZY_BUILD_BENCH=ON -DZY_BUILD_EDITOR=OFF" >&2
    echo "  cmake --build $build --target zy_resize" >&2
    exit 1
fi

# Debian's interpreter has python3-pil; a python3 earlier on PATH may not.
python=""
for candidate in /usr/bin/python3 python3; do
    if command -v "$candidate" >/dev/null 2>&1; then
        python="$candidate"
        break
    fi
done
if [[ -z "$python" ]]; then
    echo "python3 is needed to time the tools (Debian package python3)" >&2
    exit 1
fi

magick=""
for candidate in magick /usr/bin/convert-im6.q16 /usr/bin/convert convert; do
    if command -v "$candidate" >/dev/null 2>&1; then
        magick="$candidate"
        break
    fi
done
missing=()
[[ -n "$magick" ]] || missing+=("ImageMagick (Debian package imagemagick)")
command -v vips >/dev/null 2>&1 || missing+=("libvips (Debian package libvips-tools)")
have_pil=1
"$python" -c "import PIL" 2>/dev/null || {
    have_pil=0
    missing+=("Pillow (Debian package python3-pil)")
}
for m in "${missing[@]+"${missing[@]}"}"; do
    echo "missing: $m - skipped" >&2
done

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

export MAGICK_THREAD_LIMIT=1 VIPS_CONCURRENCY=1 OMP_NUM_THREADS=1

# best_cpu COMMAND...: the least user + system CPU seconds of REPEATS runs.
best_cpu() {
    "$python" - "$repeats" "$@" <<'EOF'
import resource, subprocess, sys
repeats, command = int(sys.argv[1]), sys.argv[2:]
best = None
for _ in range(repeats):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    spent = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    best = spent if best is None else min(best, spent)
print(f"{best:.4f}")
EOF
}

difference() {
    "$python" -c "import sys; print(f'{max(float(sys.argv[1]) - float(sys.argv[2]), 0.0):.4f}')" "$1" "$2"
}

ratio() {
    "$python" -c "import sys; a, b = float(sys.argv[1]), float(sys.argv[2]); print(f'{a / b:.2f}' if b > 0 else '-')" "$1" "$2"
}

ours() { # IN W H OW OH
    "$zy" "$1" "$2" "$3" "$work/zy.rgba" "$4" "$5" Lanczos3 "$repeats" | awk '/^cpu/ { print $2 }'
}

imagemagick() { # IN W H OW OH
    local full load
    full=$(best_cpu "$magick" -limit thread 1 -size "$2x$3" -depth 8 "rgba:$1" \
        -filter Lanczos -resize "$4x$5!" "rgba:$work/im.rgba")
    load=$(best_cpu "$magick" -limit thread 1 -size "$2x$3" -depth 8 "rgba:$1" "rgba:$work/im.rgba")
    difference "$full" "$load"
}

libvips() { # IN W H OW OH
    local scale full load
    vips rawload "$1" "$work/in.v" "$2" "$3" 4
    vips copy "$work/in.v" "$work/srgb.v" --interpretation srgb
    scale=$("$python" -c "import sys; print(int(sys.argv[2]) / int(sys.argv[1]))" "$2" "$4")
    full=$(best_cpu vips resize "$work/srgb.v" "$work/vips.v" "$scale" --kernel lanczos3)
    load=$(best_cpu vips copy "$work/srgb.v" "$work/vips.v")
    difference "$full" "$load"
}

pillow() { # IN W H OW OH
    "$python" - "$repeats" "$@" <<'EOF'
import sys, time
from PIL import Image
repeats, path, w, h, ow, oh = int(sys.argv[1]), sys.argv[2], *map(int, sys.argv[3:7])
image = Image.frombytes("RGBA", (w, h), open(path, "rb").read())
best = None
for _ in range(repeats):
    start = time.process_time()
    image.resize((ow, oh), Image.LANCZOS)
    spent = time.process_time() - start
    best = spent if best is None else min(best, spent)
print(f"{best:.4f}")
EOF
}

head -c $((4096 * 4096 * 4)) /dev/urandom >"$work/big.rgba"
head -c $((512 * 512 * 4)) /dev/urandom >"$work/small.rgba"
cases=("big.rgba 4096 4096 1024 1024" "small.rgba 512 512 2048 2048")
names=("reduce 4096->1024" "enlarge 512->2048")

printf "%-20s %-12s %10s %10s %8s\n" case tool seconds zy ratio
for i in "${!cases[@]}"; do
    read -r file w h ow oh <<<"${cases[$i]}"
    in="$work/$file"
    zy_time=$(ours "$in" "$w" "$h" "$ow" "$oh")
    printf "%-20s %-12s %10s %10s %8s\n" "${names[$i]}" "Zy Size" "$zy_time" "$zy_time" "1.00"
    tools=()
    [[ -n "$magick" ]] && tools+=(imagemagick)
    command -v vips >/dev/null 2>&1 && tools+=(libvips)
    [[ $have_pil == 1 ]] && tools+=(pillow)
    for tool in "${tools[@]+"${tools[@]}"}"; do
        t=$($tool "$in" "$w" "$h" "$ow" "$oh")
        printf "%-20s %-12s %10s %10s %8s\n" "${names[$i]}" "$tool" "$t" "$zy_time" "$(ratio "$t" "$zy_time")"
    done
done

#!/usr/bin/env bash
# Whole resize jobs as a user runs them from the command line, Zy's
# `zytool run Size` beside ImageMagick, libvips and Pillow: each process
# timed from start to exit, reading the file, resizing with Lanczos 3 and
# writing the result, one thread each.
#
#   bench/compare_resize.sh [BUILD_DIR] [REPEATS]
#
# BUILD_DIR is a Release build holding bin/zytool (default: build, the one
# `./dev run` and `./dev bench` make). `./dev bench` installs the other
# tools (Debian packages imagemagick, libvips-tools, python3-pil, time) and
# runs this; run directly, a missing tool is reported and skipped.
#
# The jobs, on 8-bit RGBA images made by ImageMagick (plasma colours, a
# radial alpha):
#   reduce   4096 x 4096 TGA -> 1024 x 1024 TGA
#   enlarge  1024 x 1024 TGA -> 3000 x 3000 TGA
# libvips reads and writes its own .v files, as its command-line tool does
# best; everybody else reads and writes TGA.
#
# Per job and tool it prints the best of REPEATS runs: CPU seconds (user +
# system, so that other work on a shared machine counts against nobody),
# wall seconds, peak resident size (MB), and the CPU time over the fastest
# of the three other tools in this run (at or below 1.00: Zy is as fast as
# the fastest). Then the peak of `zytool convert` on the large TGA, over
# the size of its decoded pixels.

set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../build}"
repeats="${2:-5}"
zytool="$build/bin/zytool"

if [[ ! -x "$zytool" ]]; then
    echo "no $zytool: build it first (./dev bench does), or:" >&2
    echo "  cmake -S $here/.. -B $build -G Ninja -DCMAKE_BUILD_TYPE=Release" >&2
    echo "  cmake --build $build --target zytool" >&2
    exit 1
fi
if [[ ! -x /usr/bin/time ]]; then
    echo "GNU time (/usr/bin/time, Debian package time) measures each process" >&2
    exit 1
fi
# Debian's own tools, not a wrapper earlier on PATH that would add its own
# start-up to every run.
magick=""
for candidate in /usr/bin/convert-im6.q16 /usr/bin/convert; do
    [[ -x "$candidate" ]] && magick="$candidate" && break
done
if [[ -z "$magick" ]]; then
    echo "ImageMagick (Debian package imagemagick) makes the test images" >&2
    exit 1
fi
python=/usr/bin/python3
have_vips=0
[[ -x /usr/bin/vips ]] && have_vips=1
have_pil=0
[[ -x $python ]] && $python -c "import PIL" 2>/dev/null && have_pil=1
[[ $have_vips == 1 ]] || echo "missing: libvips (Debian package libvips-tools) - skipped" >&2
[[ $have_pil == 1 ]] || echo "missing: Pillow (Debian package python3-pil) - skipped" >&2

cores=$(nproc) # before OMP_NUM_THREADS, which nproc obeys
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export MAGICK_THREAD_LIMIT=1 VIPS_CONCURRENCY=1 OMP_NUM_THREADS=1

make_image() { # SIDE SEED NAME
    "$magick" -size "$1x$1" -seed "$2" plasma:fractal \
        \( -size "$1x$1" radial-gradient: \) -alpha off -compose CopyOpacity -composite \
        -depth 8 "$work/$3.tga"
    if [[ $have_vips == 1 ]]; then
        "$magick" "$work/$3.tga" "$work/$3.png"
        vips copy "$work/$3.png" "$work/$3.v"
    fi
}
make_image 4096 7 big
make_image 1024 9 small

# best COMMAND...: "cpu wall peak_kb" of the run with the least CPU time.
best() {
    local result="" bestcpu=""
    for _ in $(seq "$repeats"); do
        local line u s e kb cpu
        /usr/bin/time -o "$work/time" -f "%U %S %e %M" "$@" >/dev/null 2>&1
        line=$(tail -1 "$work/time")
        read -r u s e kb <<<"$line"
        cpu=$(awk -v u="$u" -v s="$s" 'BEGIN { printf "%.2f", u + s }')
        if [[ -z "$bestcpu" ]] || awk -v a="$cpu" -v b="$bestcpu" 'BEGIN { exit !(a < b) }'; then
            bestcpu=$cpu
            result="$cpu $e $kb"
        fi
    done
    echo "$result"
}

# Pillow's job: IN OUT W H.
pillow_job='import sys
from PIL import Image
Image.open(sys.argv[1]).resize((int(sys.argv[3]), int(sys.argv[4])), Image.LANCZOS).save(sys.argv[2])'

row() { # JOB TOOL "cpu wall kb" RATIO
    local cpu wall kb
    read -r cpu wall kb <<<"$3"
    printf "| %-8s | %-11s | %6s | %6s | %7d | %5s |\n" "$1" "$2" "$cpu" "$wall" $((kb / 1024)) "$4"
}

echo "$cores cores, $(grep -m1 'model name' /proc/cpuinfo | sed 's/.*: //'), best of $repeats, one thread each"
echo
echo "| job      | tool        | CPU s  | wall s | peak MB | Zy/fastest |"
echo "|---|---|---|---|---|---|"
jobs=("reduce big 1024 1024 0.25" "enlarge small 3000 3000 2.9296875")
for job in "${jobs[@]}"; do
    read -r name in w h scale <<<"$job"
    zy=$(best "$zytool" run Size "$w" "$h" 0 "$work/$in.tga" "$work/zy.tga")
    declare -A peers=()
    peers[ImageMagick]=$(best "$magick" "$work/$in.tga" -filter Lanczos -resize "${w}x${h}!" "$work/im.tga")
    [[ $have_vips == 1 ]] &&
        peers[libvips]=$(best vips resize "$work/$in.v" "$work/vips.v" "$scale" --kernel lanczos3)
    [[ $have_pil == 1 ]] &&
        peers[Pillow]=$(best $python -c "$pillow_job" "$work/$in.tga" "$work/pil.tga" "$w" "$h")
    fastest=""
    for tool in "${!peers[@]}"; do
        cpu=${peers[$tool]%% *}
        if [[ -z "$fastest" ]] || awk -v a="$cpu" -v b="$fastest" 'BEGIN { exit !(a < b) }'; then
            fastest=$cpu
        fi
    done
    ratio=$(awk -v a="${zy%% *}" -v b="$fastest" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }')
    row "$name" "Zy" "$zy" "$ratio"
    for tool in ImageMagick libvips Pillow; do
        [[ -n "${peers[$tool]:-}" ]] || continue
        row "$name" "$tool" "${peers[$tool]}" ""
    done
    unset peers
done

echo
decoded=$((4096 * 4096 * 4 / 1048576))
read -r cpu wall kb <<<"$(best "$zytool" convert "$work/big.tga" "$work/copy.tga")"
echo "zytool convert big.tga (decoded $decoded MB): $cpu s CPU, $((kb / 1024)) MB peak," \
    "$(awk -v k="$kb" -v d="$decoded" 'BEGIN { printf "%.2f", k / 1024 / d }') x the decoded image"
read -r cpu wall kb <<<"$(best "$zytool" run Size 4096 4096 0 "$work/big.tga" "$work/same.tga")"
echo "zytool run Size 4096 4096 (decoded $decoded MB): $cpu s CPU, $((kb / 1024)) MB peak," \
    "$(awk -v k="$kb" -v d="$decoded" 'BEGIN { printf "%.2f", k / 1024 / d }') x the decoded image"

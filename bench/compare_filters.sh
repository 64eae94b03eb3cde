#!/usr/bin/env bash
# Times Zy's Blur, Median and HSL modules against ImageMagick doing the
# same work on a 2048 x 2048 RGBA image, one thread each, and prints both
# times with the ratio (ImageMagick's time / ours: above 1 means Zy is
# faster).
#
#   bench/compare_filters.sh [BUILD_DIR] [REPEATS]
#
# BUILD_DIR is a build configured with -DZY_BUILD_BENCH=ON in Release and
# holding bin/zy_filter (default: build-bench next to the repository).
#
# The cases, Zy module and values against ImageMagick options:
#   Blur 3                  -gaussian-blur 0x3 (a two-dimensional kernel)
#                           and -blur 0x3 (two one-dimensional passes, as ours)
#   Median                  -statistic Median 3x3
#   HSL 50 0 0xFFFFFFFF 30  -modulate 100,150,116.67 (saturation x 1.5,
#                           hue +30 degrees, in HSL)
# Blur and Median run on all four channels in both tools (-channel RGBA).
#
# Times are CPU seconds (user + system), best of REPEATS. Zy times the module
# call alone in-process; for ImageMagick the same command without the
# operation (load and save only) is timed too and taken off. The image is a
# deterministic pattern of gradients and noise with transparent holes.

set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../../build-bench}"
repeats="${2:-3}"
zy="$build/bin/zy_filter"

if [[ ! -x "$zy" ]]; then
    echo "no $zy: configure and build it first:" >&2
    echo "  cmake -S $here/.. -B $build -G Ninja -DCMAKE_BUILD_TYPE=Release -DZY_BUILD_BENCH=ON -DZY_BUILD_EDITOR=OFF" >&2
    echo "  cmake --build $build --target zy_filter" >&2
    exit 1
fi

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
if [[ -z "$magick" ]]; then
    echo "ImageMagick is needed (Debian package imagemagick)" >&2
    exit 1
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

export MAGICK_THREAD_LIMIT=1 OMP_NUM_THREADS=1

# best_cpu COMMAND...: the least user + system CPU seconds of REPEATS runs.
best_cpu() {
    "$python" - "$repeats" "$@" <<'PY'
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
PY
}

size=2048
image="$work/in.rgba"
# Gradients, noise and transparent 64-pixel holes, the same on every run.
"$python" - "$image" "$size" <<'PY'
import random, sys
path, n = sys.argv[1], int(sys.argv[2])
rng = random.Random(1)
noise = bytes(rng.getrandbits(8) for _ in range(4096))
out = bytearray(n * n * 4)
i = 0
for y in range(n):
    for x in range(n):
        v = noise[(x * 7 + y * 13) % 4096]
        hole = (x // 64 + y // 64) % 7 == 0
        out[i:i + 4] = bytes(((x * 255 // n + v // 8) & 255, (y * 255 // n + v // 16) & 255,
                              ((x ^ y) + v // 4) & 255, 0 if hole else 255))
        i += 4
open(path, "wb").write(out)
PY

raw=(-size "${size}x${size}" -depth 8 "rgba:$image")
load=$(best_cpu "$magick" -limit thread 1 "${raw[@]}" "rgba:$work/im.rgba")

names=("Blur sigma 3" "Blur sigma 3" "Median 3x3" "HSL")
zy_args=("Blur 3" "Blur 3" "Median" "HSL 50 0 0xFFFFFFFF 30")
im_args=("-channel RGBA -gaussian-blur 0x3" "-channel RGBA -blur 0x3"
    "-channel RGBA -statistic Median 3x3" "-modulate 100,150,116.67")

printf "%-14s %-40s %9s %9s %7s\n" case ImageMagick zy im ratio
for i in "${!names[@]}"; do
    # shellcheck disable=SC2086 # the argument lists split on purpose
    zy_time=$("$zy" "$image" "$size" "$size" "$work/zy.rgba" "$repeats" ${zy_args[$i]} |
        awk '/^cpu/ { print $2 }')
    # shellcheck disable=SC2086
    full=$(best_cpu "$magick" -limit thread 1 "${raw[@]}" ${im_args[$i]} "rgba:$work/im.rgba")
    "$python" - "${names[$i]}" "${im_args[$i]}" "$zy_time" "$full" "$load" <<'PY'
import sys
name, args, zy, full, load = sys.argv[1], sys.argv[2], *map(float, sys.argv[3:6])
im = max(full - load, 0.0)
print(f"{name:<14} {args:<40} {zy:9.3f} {im:9.3f} {im / zy if zy > 0 else 0:7.2f}")
PY
done

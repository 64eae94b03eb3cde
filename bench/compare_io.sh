#!/usr/bin/env bash
# Whole-process file I/O of zytool, timed as a user runs it (`info`,
# `convert`), on files made by ImageMagick, beside ImageMagick's own
# `identify` and `convert` and with `cat FILE > /dev/null` as the reference
# for reading the same bytes from the page cache.
#
#   bench/compare_io.sh ZYTOOL [REPEATS] [SIDE]
#
# ZYTOOL is a zytool from a Release build (its libtavix.so beside it).
# Prints, per job, the best CPU seconds (user + system) of REPEATS runs,
# the peak resident size, and MB/s of the input file. One thread.
set -euo pipefail

zytool="${1:?usage: compare_io.sh ZYTOOL [REPEATS] [SIDE]}"
repeats="${2:-3}"
side="${3:-4096}"
command -v convert >/dev/null || { echo "ImageMagick (convert) is needed" >&2; exit 1; }

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export MAGICK_THREAD_LIMIT=1 OMP_NUM_THREADS=1

convert -size "${side}x${side}" -seed 7 plasma:fractal \
    \( -size "${side}x${side}" radial-gradient: \) -alpha off -compose CopyOpacity -composite \
    -depth 8 "$work/big.png"
convert "$work/big.png" "$work/big.tga"

# best: prints "cpu_seconds peak_kb" of the best of REPEATS runs.
best() {
    local bestcpu="" bestkb=0
    for _ in $(seq "$repeats"); do
        local line
        # time's own report goes to a file: the job's output is thrown away
        /usr/bin/time -o "$work/time" -f "%U %S %M" "$@" >/dev/null 2>&1 || true
        line=$(tail -1 "$work/time")
        read -r u s kb <<<"$line"
        local cpu
        cpu=$(echo "$u + $s" | bc)
        if [[ -z "$bestcpu" ]] || (( $(echo "$cpu < $bestcpu" | bc) )); then bestcpu=$cpu; bestkb=$kb; fi
    done
    echo "$bestcpu $bestkb"
}

report() { # name file cpu kb
    local mb
    mb=$(echo "scale=1; $(stat -c %s "$2") / 1048576" | bc)
    local rate="-"
    (( $(echo "$3 > 0" | bc) )) && rate=$(echo "scale=0; $mb / $3" | bc)
    printf "%-28s %8s s %8s MB peak %8s MB/s of %s MB\n" "$1" "$3" "$(( $4 / 1024 ))" "$rate" "$mb"
}

for f in big.tga big.png; do
    read -r cpu kb < <(best cat "$work/$f"); report "cat $f" "$work/$f" "$cpu" "$kb"
    read -r cpu kb < <(best "$zytool" info "$work/$f"); report "zytool info $f" "$work/$f" "$cpu" "$kb"
    read -r cpu kb < <(best identify "$work/$f"); report "identify $f" "$work/$f" "$cpu" "$kb"
done
read -r cpu kb < <(best "$zytool" convert "$work/big.tga" "$work/o.tga"); report "zytool convert tga->tga" "$work/big.tga" "$cpu" "$kb"
read -r cpu kb < <(best convert "$work/big.tga" "$work/o.tga"); report "convert tga->tga" "$work/big.tga" "$cpu" "$kb"
read -r cpu kb < <(best "$zytool" convert "$work/big.png" "$work/o.tga"); report "zytool convert png->tga" "$work/big.png" "$cpu" "$kb"
read -r cpu kb < <(best convert "$work/big.png" "$work/o.tga"); report "convert png->tga" "$work/big.png" "$cpu" "$kb"

# The codec library alone, when the benchmarks of the same build lie beside
# zytool: io_bench moves the same picture through every format (read,
# write and listing, beside a plain read of each file), and refpack_bench
# packs raw 4096 x 4096 RGBA frames: real art (Debian's supertux-data
# sprites tiled, when installed), noise and one flat colour.
bin="$(dirname "$zytool")"
if [[ -x "$bin/io_bench" ]]; then
    echo
    "$bin/io_bench" "$work/big.png" "$repeats"
fi
if [[ -x "$bin/refpack_bench" ]]; then
    frames=()
    sprites=/usr/share/games/supertux2/images/creatures
    if [[ -d "$sprites" ]]; then
        montage $(ls "$sprites"/*/*.png | head -300) -tile 20x -geometry +0+0 -background none \
            "$work/sheet.png"
        convert -size "${side}x${side}" tile:"$work/sheet.png" -depth 8 "$work/art.rgba"
        frames+=("$work/art.rgba")
    fi
    convert -size "${side}x${side}" xc:none -seed 3 +noise Random -depth 8 "$work/noise.rgba"
    convert -size "${side}x${side}" 'xc:#3366997F' -depth 8 "$work/flat.rgba"
    echo
    # Freed blocks stay with the C library, so decoding is timed without
    # the kernel's cost of fresh pages.
    MALLOC_MMAP_THRESHOLD_=2000000000 MALLOC_TOP_PAD_=200000000 \
        "$bin/refpack_bench" "${frames[@]}" "$work/noise.rgba" "$work/flat.rgba" -r "$repeats"
fi

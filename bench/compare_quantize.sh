#!/usr/bin/env bash
# Colour quantization, 256 colours and no dithering, by Zy's quantizers and
# by the tools artists use: quality (PSNR of the result against the source,
# red, green and blue) and whole-process time, same images, same run.
#
#   bench/compare_quantize.sh [BUILD_DIR] [REPEATS]
#
# BUILD_DIR holds bin/zytool, built in Release (default: build-rel next to
# the repository's build folders). The images: sprites of the Debian
# package supertux-data that have more than 256 colours (24 of them, spread
# over the sorted list, plus creatures/yeti/busted3.png), all with alpha
# switched off, and a 1024 x 1024 plasma made by ImageMagick. Times are
# CPU seconds (user + system) of the whole process, best of REPEATS
# (default 3), summed over the images; PSNR is the mean over the images and
# is measured by ImageMagick's compare. Needs imagemagick, pngquant,
# python3-pil and supertux-data; a missing one is named and the run stops.

set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../build-rel}"
repeats="${2:-3}"
zytool="$build/bin/zytool"
sprites=/usr/share/games/supertux2/images

missing=()
[[ -x "$zytool" ]] || missing+=("$zytool (cmake -B $build -DCMAKE_BUILD_TYPE=Release -DZY_BUILD_EDITOR=OFF; ninja -C $build zytool tavix)")
command -v convert >/dev/null || missing+=("ImageMagick (Debian package imagemagick)")
command -v pngquant >/dev/null || missing+=("pngquant (Debian package pngquant)")
/usr/bin/python3 -c "import PIL" 2>/dev/null || missing+=("Pillow (Debian package python3-pil)")
[[ -d "$sprites" ]] || missing+=("sprites (Debian package supertux-data)")
if ((${#missing[@]})); then
    printf 'missing: %s\n' "${missing[@]}" >&2
    exit 1
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

exec /usr/bin/python3 - "$zytool" "$sprites" "$work" "$repeats" <<'PY'
import os, subprocess, sys, time
from PIL import Image

zytool, sprites, work, repeats = sys.argv[1], sys.argv[2], sys.argv[3], int(sys.argv[4])

def opaque_copy(src, dst):
    subprocess.run(["convert", src, "-alpha", "off", "PNG24:" + dst], check=True)

def colours(path):
    im = Image.open(path).convert("RGB")
    found = im.getcolors(maxcolors=257)
    return 257 if found is None else len(found)

# The images.
inputs = []
candidates = []
for folder in ("creatures", "objects", "tiles"):
    for root, _, files in os.walk(os.path.join(sprites, folder)):
        candidates += [os.path.join(root, f) for f in files if f.endswith(".png")]
candidates.sort()
rich = []
for i, path in enumerate(candidates):
    if i % 7:  # look at every 7th file: enough variety, quick to scan
        continue
    if os.path.getsize(path) < 2000 or path.endswith("busted3.png"):
        continue
    if colours(path) > 256:
        rich.append(path)
step = max(1, len(rich) // 24)
chosen = rich[::step][:24] + [os.path.join(sprites, "creatures/yeti/busted3.png")]
for n, path in enumerate(chosen):
    dst = os.path.join(work, "in%02d.png" % n)
    opaque_copy(path, dst)
    inputs.append((os.path.relpath(path, sprites), dst))
plasma = os.path.join(work, "plasma.png")
subprocess.run(["convert", "-seed", "7", "-size", "1024x1024", "plasma:fractal", "PNG24:" + plasma], check=True)
inputs.append(("plasma 1024x1024", plasma))

def zy(method):
    return lambda src, dst: [zytool, "quantize", src, dst, "--method", method]

pillow = ("from PIL import Image; import sys; Image.open(sys.argv[1]).convert('RGB')"
          ".quantize(256, method=Image.Quantize.MEDIANCUT, dither=Image.Dither.NONE).save(sys.argv[2])")
# Exact is left out: it keeps the K most frequent colours, meant for images
# that have no more than K, and its hash scan grows with the square of the
# number of distinct colours (minutes on the plasma).
tools = [("Zy " + m, zy(m)) for m in ("Wu", "Wu555", "Wu777", "Wu Ve", "Lloyd", "MQ", "Tw", "4D Wu")]
tools += [
    ("pngquant --speed 1", lambda s, d: ["pngquant", "--speed", "1", "--nofs", "--force", "-o", d, "256", s]),
    ("pngquant (default)", lambda s, d: ["pngquant", "--nofs", "--force", "-o", d, "256", s]),
    ("ImageMagick -colors 256 +dither", lambda s, d: ["convert", s, "+dither", "-colors", "256", d]),
    ("Pillow median cut", lambda s, d: ["/usr/bin/python3", "-c", pillow, s, d]),
]

def cpu_seconds(argv):
    pid = os.fork()
    if pid == 0:
        devnull = os.open(os.devnull, os.O_WRONLY)
        os.dup2(devnull, 1)
        os.dup2(devnull, 2)
        try:
            os.execvp(argv[0], argv)
        finally:
            os._exit(127)
    _, status, usage = os.wait4(pid, 0)
    if os.waitstatus_to_exitcode(status) not in (0, 99):  # pngquant 99: quality not met
        raise SystemExit("failed: " + " ".join(argv))
    return usage.ru_utime + usage.ru_stime

def psnr(a, b):
    r = subprocess.run(["compare", "-channel", "RGB", "-metric", "PSNR", a, b, "null:"],
                       capture_output=True, text=True)
    text = r.stderr.strip().split()[0]
    return 100.0 if text in ("inf", "0") else float(text)

print("%d images: %d supertux sprites of more than 256 colours (yeti/busted3.png among them)"
      " and a plasma" % (len(inputs), len(inputs) - 1))
rows = []
for name, command in tools:
    total_time, total_psnr, busted, plasma_psnr = 0.0, 0.0, None, None
    for label, src in inputs:
        out = os.path.join(work, "out.png")
        best = min(cpu_seconds(command(src, out)) for _ in range(repeats))
        quality = psnr(src, out)
        total_time += best
        total_psnr += quality
        if label.endswith("busted3.png"):
            busted = (quality, best)
        if label.startswith("plasma"):
            plasma_psnr = (quality, best)
    rows.append((name, total_psnr / len(inputs), total_time, busted, plasma_psnr))

print()
print("| method | mean PSNR (dB) | total CPU (s) | busted3 dB / s | plasma dB / s |")
print("|---|---|---|---|---|")
for name, mean, total, busted, plasma in rows:
    print("| %s | %.2f | %.2f | %.2f / %.3f | %.2f / %.3f |"
          % (name, mean, total, busted[0], busted[1], plasma[0], plasma[1]))
PY

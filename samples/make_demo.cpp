// Draws the demo sprites and writes them as samples/demo.fsh and
// samples/demo.ssh through the codec library's exported entry points, the
// way the editor saves a document.
//
//   make_demo <output folder>
//
// Contents: a soft-edged sprite with alpha, hot spots and a comment; a set
// of indexed sprites sharing the "!pal" palette; a DXT1 texture with its
// mip levels; a packed banner; a 16-colour icon with its own palette.

#include "tavix/api.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// ------------------------------------------------------------- callbacks

intptr_t openRead(const char* path) {
    int fd = open(path, O_RDONLY);
    return fd > 0 ? fd : 0;
}
intptr_t openWrite(const char* path) {
    int fd = open(path, O_RDWR | O_CREAT | O_TRUNC, 0666);
    return fd > 0 ? fd : 0;
}
int closeStream(intptr_t s) {
    return s == 0 || close(static_cast<int>(s)) == 0;
}
int32_t readStream(intptr_t s, void* b, int32_t n) {
    return static_cast<int32_t>(read(static_cast<int>(s), b, n));
}
int32_t writeStream(intptr_t s, const void* b, int32_t n) {
    return static_cast<int32_t>(write(static_cast<int>(s), b, n));
}
int seekStream(intptr_t s, uint32_t low, int32_t high) {
    off_t at = static_cast<off_t>(static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32 | low);
    return lseek(static_cast<int>(s), at, SEEK_SET) >= 0;
}
int64_t sizeOf(intptr_t s) {
    off_t at = lseek(static_cast<int>(s), 0, SEEK_CUR);
    off_t end = lseek(static_cast<int>(s), 0, SEEK_END);
    lseek(static_cast<int>(s), at, SEEK_SET);
    return end;
}
int64_t tellStream(intptr_t s) {
    return lseek(static_cast<int>(s), 0, SEEK_CUR);
}
void* allocate(int32_t n) {
    return malloc(static_cast<size_t>(n));
}
int release(void* p) {
    free(p);
    return 1;
}
void print(const char* text) {
    fputs(text, stderr);
}

// ---------------------------------------------------------------- frames

struct Sprite {
    TavixInfo info{};
    std::vector<uint32_t> argb;   // true colour
    std::vector<uint8_t> indices; // indexed
    bool indexed() const { return info.bufferbpp == 8; }
};

Sprite newSprite(const char* name, int w, int h, bool indexed) {
    Sprite s;
    s.info.size = kTavixInfoSize;
    s.info.version = kTavixInfoVersion;
    s.info.width = w;
    s.info.height = h;
    s.info.bufferbpp = indexed ? 8 : 32;
    s.info.bpp = indexed ? 8 : 32;
    s.info.quality = 100;
    s.info.alphabits = s.info.redbits = s.info.greenbits = s.info.bluebits = 8;
    snprintf(s.info.framename, sizeof s.info.framename, "%s", name);
    if (indexed)
        s.indices.assign(static_cast<size_t>(w) * h, 0);
    else
        s.argb.assign(static_cast<size_t>(w) * h, 0);
    return s;
}

uint32_t pack(double a, double r, double g, double b) {
    auto c = [](double v) { return static_cast<uint32_t>(std::clamp(v, 0.0, 1.0) * 255.0 + 0.5); };
    return c(a) << 24 | c(r) << 16 | c(g) << 8 | c(b);
}

void setColour(TavixInfo& info, int i, uint32_t argb) {
    info.colours[i] = {static_cast<uint8_t>(argb), static_cast<uint8_t>(argb >> 8),
                       static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 24)};
}

// A round ship hull with a soft rim: alpha falls off over the last pixels.
Sprite ship() {
    const int n = 64;
    Sprite s = newSprite("ship_with_alpha", n, n, false);
    s.info.subtype = 0x7D;
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            const double dx = (x + 0.5 - n / 2.0) / (n / 2.0), dy = (y + 0.5 - n / 2.0) / (n / 2.0);
            const double d = std::sqrt(dx * dx + dy * dy);
            const double alpha = std::clamp((1.0 - d) * 8.0, 0.0, 1.0);
            const double light = 0.55 + 0.45 * std::clamp(-(dx + dy) * 0.7, -1.0, 1.0);
            const bool window = std::fabs(dx) < 0.25 && dy > -0.5 && dy < -0.1;
            s.argb[y * n + x] = window ? pack(alpha, 0.3, 0.8 * light, 1.0)
                                       : pack(alpha, 0.8 * light, 0.3 * light, 0.2);
        }
    s.info.centerx = n / 2;
    s.info.centery = n / 2;
    s.info.defaultx = 16;
    s.info.defaulty = 24;
    snprintf(s.info.comment, sizeof s.info.comment,
             "Soft-edged sprite: alpha falls off at the rim");
    s.info.numhotspots = 2;
    s.info.hotspots[0] = {32, 4};  // the nose
    s.info.hotspots[1] = {32, 60}; // the exhaust
    return s;
}

// The shared palette: a warm ramp for the coins, transparent index 0.
std::vector<uint32_t> coinPalette() {
    std::vector<uint32_t> p(256);
    p[0] = 0x00000000;
    for (int i = 1; i < 256; ++i) {
        const double t = i / 255.0;
        p[i] = pack(1.0, 0.35 + 0.65 * t, 0.2 + 0.6 * t, 0.05 + 0.2 * t * t);
    }
    return p;
}

// A coin turning about its vertical axis: frame k shows it at angle k*22.5.
Sprite coin(int k, const std::vector<uint32_t>& palette) {
    const int n = 32;
    char name[32];
    snprintf(name, sizeof name, "coin_spin_%d", k);
    Sprite s = newSprite(name, n, n, true);
    s.info.subtype = 0x7B;
    s.info.numcolours = 256;
    for (int i = 0; i < 256; ++i)
        setColour(s.info, i, palette[i]);
    const double squash = std::max(0.12, std::fabs(std::cos(k * M_PI / 8.0)));
    for (int y = 0; y < n; ++y)
        for (int x = 0; x < n; ++x) {
            const double dx = (x + 0.5 - n / 2.0) / (n / 2.0 - 1) / squash,
                         dy = (y + 0.5 - n / 2.0) / (n / 2.0 - 1);
            const double d = dx * dx + dy * dy;
            if (d > 1.0) continue;
            const double shade = 0.5 + 0.5 * (1.0 - d) - (d > 0.7 ? 0.25 : 0.0);
            s.indices[y * n + x] =
                static_cast<uint8_t>(std::clamp(1.0 + shade * 254.0, 1.0, 255.0));
        }
    s.info.centerx = n / 2;
    s.info.centery = n / 2;
    s.info.numhotspots = 1;
    s.info.hotspots[0] = {n / 2, n / 2};
    return s;
}

Sprite globalPalette(const std::vector<uint32_t>& palette) {
    Sprite s = newSprite("!pal", 256, 1, true);
    s.info.numcolours = 256;
    for (int i = 0; i < 256; ++i) {
        setColour(s.info, i, palette[i]);
        s.indices[i] = static_cast<uint8_t>(i);
    }
    return s;
}

// A checkerboard with a diagonal stripe, and its mip chain made by 2x2
// averaging; the levels follow the base with the mip attribute set.
std::vector<Sprite> texture() {
    std::vector<Sprite> levels;
    Sprite base = newSprite("checker_texture", 64, 64, false);
    base.info.subtype = 0x60;
    base.info.bpp = 32;
    base.info.alphabits = 1, base.info.redbits = 5, base.info.greenbits = 6, base.info.bluebits = 5;
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            const bool dark = ((x / 8) + (y / 8)) % 2 != 0;
            const bool stripe = std::abs(x - y) < 4;
            base.argb[y * 64 + x] = stripe ? 0xFFE0C020 : dark ? 0xFF304060 : 0xFFB0C0D0;
        }
    snprintf(base.info.comment, sizeof base.info.comment, "DXT1 with six mip levels");
    levels.push_back(base);
    for (int level = 1; levels.back().info.width > 1; ++level) {
        const Sprite& up = levels.back();
        const int w = up.info.width / 2, h = up.info.height / 2;
        char name[16];
        snprintf(name, sizeof name, "mm%d", level);
        Sprite m = newSprite(name, w, h, false);
        m.info.subtype = 0x60;
        m.info.attributes = kAttrMipLevel;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                uint32_t sum[4] = {};
                for (int j = 0; j < 4; ++j) {
                    const uint32_t c = up.argb[(2 * y + j / 2) * up.info.width + 2 * x + j % 2];
                    for (int ch = 0; ch < 4; ++ch)
                        sum[ch] += (c >> (8 * ch)) & 255;
                }
                m.argb[y * w + x] = (sum[3] + 2) / 4 << 24 | (sum[2] + 2) / 4 << 16 |
                                    (sum[1] + 2) / 4 << 8 | (sum[0] + 2) / 4;
            }
        levels.push_back(m);
    }
    return levels;
}

// Wide and repetitive: a good case for the RefPack compressor.
Sprite banner() {
    Sprite s = newSprite("packed_banner", 128, 32, false);
    s.info.subtype = 0x7D;
    s.info.packed = 1;
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 128; ++x) {
            const bool band = (y / 4) % 2 == 0;
            const bool arrow = std::abs((x % 32) - 16) + std::abs(y - 16) < 10;
            s.argb[y * 128 + x] = arrow ? 0xFFFFFFFF : band ? 0xC0205080 : 0x80102040;
        }
    snprintf(s.info.comment, sizeof s.info.comment, "Stored RefPack-compressed");
    return s;
}

// Sixteen colours with a palette of its own (4-bit record on PC).
Sprite icon() {
    Sprite s = newSprite("hud_icon_16", 16, 16, true);
    s.info.subtype = 0x7A;
    s.info.bpp = 4;
    s.info.numcolours = 16;
    for (int i = 0; i < 16; ++i)
        setColour(s.info, i, i == 0 ? 0x00000000 : pack(1.0, i / 15.0, 1.0 - i / 15.0, 0.5));
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) {
            const int ring = std::max(std::abs(x * 2 - 15), std::abs(y * 2 - 15)) / 2;
            s.indices[y * 16 + x] = static_cast<uint8_t>(ring == 7 ? 0 : 15 - ring * 2);
        }
    return s;
}

std::vector<Sprite> demo() {
    std::vector<Sprite> all;
    all.push_back(ship());
    const std::vector<uint32_t> palette = coinPalette();
    for (int k = 0; k < 4; ++k)
        all.push_back(coin(k, palette));
    all.push_back(globalPalette(palette));
    for (Sprite& level : texture())
        all.push_back(level);
    all.push_back(banner());
    all.push_back(icon());
    return all;
}

bool writeFile(const std::string& path, const char* driverName, std::vector<Sprite> sprites) {
    const int driver = TAVIX_find_8(driverName, 0);
    if (driver < 0) {
        fprintf(stderr, "make_demo: the codec library has no %s driver\n", driverName);
        return false;
    }
    TAVIX_set_4(driver);
    intptr_t stream = openWrite(path.c_str());
    if (!stream) {
        fprintf(stderr, "make_demo: cannot create %s\n", path.c_str());
        return false;
    }
    TavixWriter writer = nullptr;
    bool ok = TAVIX_wopen_16(&writer, stream, path.c_str(), static_cast<int>(sprites.size())) != 0;
    for (Sprite& s : sprites) {
        if (!ok) break;
        const void* pixels =
            s.indexed() ? static_cast<const void*>(s.indices.data()) : s.argb.data();
        const int32_t pitch = s.info.width * (s.indexed() ? 1 : 4);
        ok = TAVIX_write_16(writer, &s.info, pixels, pitch) != 0;
    }
    if (writer && !TAVIX_wclose_4(writer)) ok = false;
    closeStream(stream);
    if (!ok) fprintf(stderr, "make_demo: writing %s failed\n", path.c_str());
    return ok;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: make_demo <output folder>\n");
        return 2;
    }
    const TavixCallbacks callbacks = {openRead,   openWrite, closeStream, readStream, writeStream,
                                      seekStream, sizeOf,    tellStream,  allocate,   release};
    TAVIX_installcallbacks64_4(&callbacks);
    TAVIX_installprint_4(print);
    if (!TAVIX_init_0()) return 1;
    const std::string folder = argv[1];
    std::vector<Sprite> sprites = demo();
    bool ok = writeFile(folder + "/demo.fsh", "newfsh", sprites);
    // The PS2 file takes the same frames; the writer picks the PS2 records
    // (8-bit indexed, 32-bit) for what the PC records do not exist there.
    for (Sprite& s : sprites)
        s.info.subtype = 0;
    ok = writeFile(folder + "/demo.ssh", "newssh", sprites) && ok;
    TAVIX_restore_0();
    return ok ? 0 : 1;
}

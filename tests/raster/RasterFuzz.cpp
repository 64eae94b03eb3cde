#include "RasterFuzz.h"

#include "imaging/galloc.h"
#include "imaging/gfile.h"
#include "tavix/core/Driver.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace tavix {
extern const Driver kTgaDriver;
extern const Driver kPngDriver;
extern const Driver kBmpDriver;
} // namespace tavix

using namespace tavix;

namespace {

// Round trips only for frames small enough to keep the fuzzer fast.
constexpr size_t kRoundTripPixels = 1 << 16;

[[noreturn]] void finding(const char* what) {
    fprintf(stderr, "raster fuzz finding: %s\n", what);
    abort();
}

void ignoreLine(const char*) {}

void installGallocHost() {
    static const TavixCallbacks callbacks = {gfopenread, gfopenwrite, gfclose, gfread, gfwrite,
                                             gfseek,     gfsize,      gftell,  galloc, gfree};
    installHost(&callbacks);
    installPrintHook(ignoreLine);
}

const Driver* driverNamed(const char* name) {
    for (const Driver* d : {&kTgaDriver, &kPngDriver, &kBmpDriver})
        if (strcmp(d->shortname, name) == 0) return d;
    return nullptr;
}

// Rewrites every complete chunk's CRC so mutations get past the check.
void fixPngChecksums(std::vector<uint8_t>& bytes) {
    size_t at = 8;
    while (at + 12 <= bytes.size()) {
        uint32_t length =
            uint32_t{bytes[at]} << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
        if (length > bytes.size() - at - 12) break;
        uLong crc = crc32(0, &bytes[at + 4], length + 4);
        for (int i = 0; i < 4; ++i)
            bytes[at + 8 + length + i] = static_cast<uint8_t>(crc >> (24 - 8 * i));
        at += 12 + length;
    }
}

// What a frame's record promises about its pixels must hold.
void checkConsistent(const TavixInfo& info, const Picture& picture) {
    if (picture.width != info.width || picture.height != info.height)
        finding("frame size differs from its record");
    size_t pixels = size_t(picture.width) * size_t(picture.height);
    if (picture.indexed != (info.bufferbpp <= 8))
        finding("pixel kind differs from the record's buffer depth");
    if ((picture.indexed ? picture.indices.size() : picture.argb.size()) != pixels)
        finding("pixel count is wrong");
    if (picture.indexed && (info.numcolours < 1 || info.numcolours > 256))
        finding("palette count out of range");
    if (info.alphabits == 0)
        for (size_t i = 0; i < pixels; ++i)
            if (picture.argbAt(i) >> 24 != 255)
                finding("a frame without alpha bits has a transparent pixel");
}

// A driver that decodes straight into the caller's rows must give the same
// pixels and palette as its decode(), whatever the row pitch; a fresh reader
// is used so that nothing settled by the first read is reused.
void checkDirectDecode(const Driver& driver, Bytes&& file, const TavixInfo& info,
                       const Picture& picture) {
    size_t width = size_t(picture.width), height = size_t(picture.height);
    if (width * height > kRoundTripPixels) return;
    HostPtr<FrameReader> reader = driver.open(std::move(file));
    TavixInfo request = info;
    memset(request.colours, 0, sizeof request.colours);
    size_t bytes = picture.indexed ? 1 : 4;
    ptrdiff_t pitch = static_cast<ptrdiff_t>(width * bytes + 8);
    std::vector<uint8_t> rows(static_cast<size_t>(pitch) * height, 0xAB);
    if (!reader->decodeInto(0, request, rows.data(), pitch)) return;
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* row = rows.data() + y * static_cast<size_t>(pitch);
        const void* expected = picture.indexed
                                   ? static_cast<const void*>(&picture.indices[y * width])
                                   : static_cast<const void*>(&picture.argb[y * width]);
        if (memcmp(row, expected, width * bytes) != 0) finding("direct decoding gave other pixels");
        for (size_t i = width * bytes; i < static_cast<size_t>(pitch); ++i)
            if (row[i] != 0xAB) finding("direct decoding wrote past the row");
    }
    if (picture.indexed && memcmp(request.colours, picture.palette, sizeof request.colours) != 0)
        finding("direct decoding gave another palette");
}

void decodeOnce(const Driver& driver, Bytes&& file, TavixInfo& info, Picture& picture) {
    Bytes copy = file;
    HostPtr<FrameReader> reader = driver.open(std::move(file));
    if (reader->frameCount() != 1) finding("a single-image format reported another frame count");
    info = TavixInfo{};
    info.size = kTavixInfoSize;
    info.version = kTavixInfoVersion;
    info.quality = 100;
    Bytes tail;
    reader->describe(0, info, tail);
    reader->decode(0, picture);
    checkConsistent(info, picture);
    checkDirectDecode(driver, std::move(copy), info, picture);
}

void roundTrip(const Driver& driver, const TavixInfo& info, const Picture& picture) {
    Bytes written;
    {
        HostPtr<FrameWriter> writer = driver.create(1);
        if (!writer) finding("the writer refused one frame");
        Picture copy = picture;
        writer->add(info, {}, std::move(copy));
        writer->finish(written);
    }
    TavixInfo again;
    Picture back;
    decodeOnce(driver, std::move(written), again, back);
    if (back.indexed != picture.indexed) finding("the round trip changed the pixel kind");
    size_t pixels = size_t(picture.width) * size_t(picture.height);
    for (size_t i = 0; i < pixels; ++i) {
        if (picture.indexed && back.indices[i] != picture.indices[i])
            finding("the round trip changed an index");
        if (back.argbAt(i) != picture.argbAt(i)) {
            fprintf(stderr, "pixel %zu: 0x%08X became 0x%08X\n", i, picture.argbAt(i),
                    back.argbAt(i));
            finding("the round trip changed a colour");
        }
    }
}

} // namespace

int fuzzRaster(const char* name, const uint8_t* data, size_t size) {
    installGallocHost();
    const Driver* driver = driverNamed(name);
    if (!driver) finding("unknown driver name");
    std::vector<uint8_t> input(data, data + size);
    if (strcmp(name, "png") == 0) fixPngChecksums(input);
    const int32_t live = galloc_live_count();
    TavixInfo info;
    bool decoded = false;
    {
        Picture picture;
        try {
            std::span<const uint8_t> head(input.data(), std::min(input.size(), kDetectBytes));
            driver->detect(head, "");
            driver->detect(head, "fuzz.tga");
            decodeOnce(*driver, Bytes(input.begin(), input.end()), info, picture);
            decoded = true;
        } catch (const FormatError&) {
        } catch (const std::bad_alloc&) {
        }
        if (decoded && size_t(picture.width) * size_t(picture.height) <= kRoundTripPixels) {
            try {
                roundTrip(*driver, info, picture);
            } catch (const FormatError& error) {
                fprintf(stderr, "%s\n", error.message);
                finding("a decoded frame could not be written and read back");
            }
        }
    }
    if (galloc_live_count() != live) finding("blocks leaked");
    return 0;
}

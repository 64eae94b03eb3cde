// Windows Bitmap (.bmp).
//
// Reading: core (OS/2 1.x), INFO, V2/V3, V4 and V5 headers; 1, 4 and 8-bit
// palette images (plain, or RLE4/RLE8 packed) as indexed frames with one
// index per pixel; 16, 24 and 32-bit images as 32-bit ARGB, with BI_RGB's
// fixed channel layout or BI_BITFIELDS / BI_ALPHABITFIELDS masks (channels
// narrower than 8 bits widened by bit replication); rows
// bottom-up or top-down. Colour tables have no alpha, so palettes read
// opaque; BI_RGB's fourth byte of a 32-bit pixel is unused and ignored. An
// alpha mask whose values are all zero marks a writer that did not mean
// alpha, so such an image reads opaque.
//
// Writing: indexed frames as 8-bit BI_RGB with the palette entries in use;
// a colour table has no alpha, so an indexed frame whose record has alpha
// bits and whose palette has a transparent entry is written as 32-bit
// colours with an alpha mask instead; true colour as 24-bit BI_RGB when the
// record has no alpha bits or every pixel is opaque, else 32-bit
// BI_BITFIELDS with a BITMAPV4HEADER carrying the alpha mask. Rows are
// stored bottom-up, the layout every reader accepts. The resolution is
// kept (`dpi`); names, points and comments are not stored.

#include "tavix/core/ByteIO.h"
#include "tavix/core/Driver.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace tavix {
namespace {

constexpr uint32_t kBmpId = 0x424D5000;
constexpr size_t kFileHeaderBytes = 14;
constexpr uint32_t kCoreHeader = 12, kInfoHeader = 40, kV4Header = 108, kV5Header = 124;
enum Compression : uint32_t { kRgb = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6 };
// Packed bitmaps can skip whole areas cheaply, so only a loose bound holds.
constexpr uint64_t kMaxRleInflation = 4096;
constexpr uint64_t kFreeRlePixels = uint64_t{1} << 20;
constexpr double kMetresPerInch = 0.0254;

struct BmpLayout {
    uint32_t dataOffset = 0;
    uint32_t headerSize = 0;
    int32_t width = 0;
    int32_t height = 0; // always positive; see topDown
    bool topDown = false;
    uint16_t bpp = 0;
    uint32_t compression = kRgb;
    uint32_t coloursUsed = 0;
    int32_t pixelsPerMetre = 0;
    uint32_t masks[4] = {}; // red, green, blue, alpha
    size_t paletteOffset = 0;
    size_t paletteEntryBytes = 4;
    int paletteCount = 0;

    bool indexed() const { return bpp <= 8; }
    bool packed() const { return compression == kRle8 || compression == kRle4; }
    uint64_t stride() const { return (uint64_t{static_cast<uint32_t>(width)} * bpp + 31) / 32 * 4; }
};

bool knownHeaderSize(uint32_t size) {
    return size == kCoreHeader || size == kInfoHeader || size == 52 || size == 56 ||
           size == kV4Header || size == kV5Header;
}

bool contiguous(uint32_t mask) {
    if (mask == 0) return true;
    uint32_t shifted = mask >> std::countr_zero(mask);
    return (shifted & (shifted + 1)) == 0;
}

void defaultMasks(BmpLayout& b) {
    if (b.bpp == 16) {
        b.masks[0] = 0x7C00, b.masks[1] = 0x03E0, b.masks[2] = 0x001F;
    } else if (b.bpp == 32) {
        b.masks[0] = 0xFF0000, b.masks[1] = 0xFF00, b.masks[2] = 0xFF;
    }
    b.masks[3] = 0;
}

void checkDepthAndCompression(const BmpLayout& b) {
    switch (b.compression) {
    case kRgb:
        if (b.bpp != 1 && b.bpp != 4 && b.bpp != 8 && b.bpp != 16 && b.bpp != 24 && b.bpp != 32)
            fail("a %u-bit bitmap is not supported", b.bpp);
        return;
    case kRle8:
    case kRle4:
        if (b.bpp != (b.compression == kRle8 ? 8 : 4))
            fail("the bitmap's packing does not fit its %u-bit depth", b.bpp);
        if (b.topDown) fail("a packed bitmap cannot be stored top-down");
        return;
    case kBitFields:
    case kAlphaBitFields:
        if (b.bpp != 16 && b.bpp != 32)
            fail("colour masks need a 16 or 32-bit bitmap, not %u-bit", b.bpp);
        for (uint32_t mask : b.masks)
            if (!contiguous(mask) || (b.bpp == 16 && mask > 0xFFFF))
                fail("colour mask 0x%08X is not usable", mask);
        return;
    default:
        fail("bitmap compression %u is not supported", b.compression);
    }
}

void readInfoHeader(ByteReader& in, BmpLayout& b) {
    b.width = in.i32le();
    int32_t height = in.i32le();
    if (height == INT32_MIN) fail("the bitmap height is not valid");
    b.topDown = height < 0;
    b.height = height < 0 ? -height : height;
    if (in.u16le() != 1) fail("the bitmap has more than one plane");
    b.bpp = in.u16le();
    b.compression = in.u32le();
    in.skip(4); // image size, often zero
    b.pixelsPerMetre = in.i32le();
    in.skip(4); // vertical resolution
    b.coloursUsed = in.u32le();
    in.skip(4); // important colours
    bool masks = b.compression == kBitFields || b.compression == kAlphaBitFields;
    if (b.headerSize >= 52 || masks) {
        // The masks follow a 40-byte header, or are part of a longer one
        // (a 52-byte header has room for no alpha mask).
        bool alphaMask =
            b.headerSize >= 56 || (b.headerSize == kInfoHeader && b.compression == kAlphaBitFields);
        int count = alphaMask ? 4 : 3;
        for (int i = 0; i < count; ++i)
            b.masks[i] = in.u32le();
    }
    if (!masks) defaultMasks(b);
    in.seek(kFileHeaderBytes + b.headerSize);
    if (b.headerSize == kInfoHeader && masks) in.skip(b.compression == kAlphaBitFields ? 16 : 12);
}

// `in` holds the start of the file, at least every header byte.
BmpLayout parseLayout(ByteReader& in, uint64_t fileSize) {
    BmpLayout b;
    if (in.u16le() != 0x4D42) fail("not a Windows bitmap");
    in.skip(8); // file size and reserved words: many writers get them wrong
    b.dataOffset = in.u32le();
    b.headerSize = in.u32le();
    if (!knownHeaderSize(b.headerSize))
        fail("bitmap header size %u is not supported", b.headerSize);
    if (b.headerSize == kCoreHeader) {
        b.width = in.u16le();
        b.height = in.u16le();
        if (in.u16le() != 1) fail("the bitmap has more than one plane");
        b.bpp = in.u16le();
        b.paletteEntryBytes = 3;
        defaultMasks(b);
    } else {
        readInfoHeader(in, b);
    }
    if (b.width <= 0 || b.height <= 0)
        fail("the bitmap size %d x %d is not valid", b.width, b.height);
    checkDepthAndCompression(b);
    b.paletteOffset = in.pos();
    if (b.dataOffset < b.paletteOffset || b.dataOffset > fileSize)
        fail("the bitmap's pixel data offset %u is outside the file", b.dataOffset);
    if (b.indexed()) {
        uint32_t wanted = b.coloursUsed ? b.coloursUsed : 1u << b.bpp;
        if (wanted > (1u << b.bpp))
            fail("the bitmap claims %u colours for a %u-bit depth", wanted, b.bpp);
        size_t room = (b.dataOffset - b.paletteOffset) / b.paletteEntryBytes;
        b.paletteCount = static_cast<int>(std::min<size_t>(wanted, room));
        if (b.paletteCount == 0) fail("the palette bitmap has no colour table");
    }
    return b;
}

// The size checks that must pass before any pixel memory is taken.
void checkFits(const BmpLayout& b, size_t fileSize) {
    size_t pixels = checkedPixelCount(b.width, b.height);
    uint64_t available = fileSize - b.dataOffset;
    if (b.packed()) {
        if (pixels > std::max(kFreeRlePixels, available * kMaxRleInflation))
            fail("the packed data is too small for a %d x %d bitmap", b.width, b.height);
        return;
    }
    uint64_t lastRow = (uint64_t{static_cast<uint32_t>(b.width)} * b.bpp + 7) / 8;
    if (b.stride() * (b.height - 1) + lastRow > available)
        fail("the file is too short for a %d x %d, %u-bit bitmap", b.width, b.height, b.bpp);
}

struct Channel {
    uint32_t mask, shift, max;
    explicit Channel(uint32_t m)
        : mask(m), shift(m ? std::countr_zero(m) : 0), max(m ? m >> std::countr_zero(m) : 0) {}
    // Narrow channels widen by repeating their bits (5 bits abcde become
    // abcdeabc), as the Targa and shape readers do, so 0 and the top value
    // map to 0 and 255 and every reader of Zy agrees on the colours.
    uint32_t operator()(uint32_t pixel) const {
        if (!mask) return 0;
        uint32_t v = (pixel & mask) >> shift;
        int bits = std::bit_width(max);
        if (bits >= 8) return v >> (bits - 8);
        uint32_t wide = 0;
        int filled = 0;
        for (; filled < 8; filled += bits)
            wide = wide << bits | v;
        return wide >> (filled - 8);
    }
};

// Stored rows of plain bitmaps are read in blocks of about this many bytes.
constexpr size_t kBlockBytes = size_t{4} << 20;
// The most header bytes a file can have before its colour table: the file
// header, a V5 header and the masks that follow an INFO header.
constexpr size_t kMaxHeadBytes = kFileHeaderBytes + kV5Header + 16;

// The reader takes the headers and colour table when the file is opened
// and the pixels only when the frame is decoded, in blocks straight into
// the caller's rows. Only one thing needs the pixels before that: an image
// with an alpha mask, whose alpha values decide whether it has alpha.
class BmpReader : public FrameReader {
  public:
    explicit BmpReader(HostPtr<Source>&& source) : m_source(std::move(source)) {
        const uint64_t size = m_source->size();
        if (size > 0x7FFFFFFFu) fail("the bitmap file is too large");
        m_fileSize = static_cast<size_t>(size);
        Bytes head = m_source->bytes(0, std::min<size_t>(m_fileSize, kMaxHeadBytes));
        ByteReader in(head.data(), head.size());
        m_layout = parseLayout(in, m_fileSize);
        checkFits(m_layout, m_fileSize);
        if (m_layout.indexed()) readPalette();
        m_alphaKnown = m_layout.indexed() || !m_layout.masks[3];
    }

    int frameCount() const override { return 1; }

    void describe(int, TavixInfo& info, Bytes&) override {
        const BmpLayout& b = m_layout;
        if (!m_alphaKnown) settleAlphaFromPixels();
        info.formatid = kBmpId;
        info.width = b.width;
        info.height = b.height;
        info.bufferbpp = b.indexed() ? 8 : 32;
        info.bpp = b.bpp;
        info.numcolours = b.indexed() ? b.paletteCount : 0;
        if (b.indexed()) memcpy(info.colours, m_palette, sizeof info.colours);
        info.subtype = static_cast<int32_t>(b.compression);
        info.packed = b.packed() ? 1 : 0;
        info.framesize = static_cast<int32_t>(m_fileSize);
        if (b.indexed() || b.bpp == 24) {
            info.redbits = info.greenbits = info.bluebits = 8;
        } else {
            info.redbits = std::popcount(b.masks[0]);
            info.greenbits = std::popcount(b.masks[1]);
            info.bluebits = std::popcount(b.masks[2]);
        }
        info.alphabits = m_alphaBits;
        if (b.pixelsPerMetre > 0)
            info.dpi =
                static_cast<float>(std::round(b.pixelsPerMetre * kMetresPerInch * 100) / 100);
    }

    void decode(int, Picture& out) override {
        const BmpLayout& b = m_layout;
        if (b.indexed()) {
            out.makeIndexed(b.width, b.height);
            memcpy(out.palette, m_palette, sizeof out.palette);
            out.numcolours = b.paletteCount;
            decodeRows(out.indices.data(), b.width);
        } else {
            out.makeTrueColour(b.width, b.height);
            decodeRows(reinterpret_cast<uint8_t*>(out.argb.data()),
                       static_cast<ptrdiff_t>(b.width) * 4);
        }
    }

    bool decodeInto(int, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) override {
        const BmpLayout& b = m_layout;
        if (info.width != b.width || info.height != b.height ||
            (info.bufferbpp <= 8) != b.indexed())
            return false;
        decodeRows(pixels, pitch);
        if (b.indexed()) memcpy(info.colours, m_palette, sizeof info.colours);
        return true;
    }

  private:
    size_t rowOf(size_t stored) const {
        return m_layout.topDown ? stored : static_cast<size_t>(m_layout.height) - 1 - stored;
    }

    void readPalette() {
        const BmpLayout& b = m_layout;
        Bytes table = m_source->bytes(b.paletteOffset, b.paletteEntryBytes * b.paletteCount);
        Picture palette;
        for (int i = 0; i < b.paletteCount; ++i) {
            const uint8_t* e = &table[b.paletteEntryBytes * i];
            palette.setPaletteArgb(i, packArgb(255, e[2], e[1], e[0]));
        }
        memcpy(m_palette, palette.palette, sizeof m_palette);
    }

    // Calls `row(stored, bytes)` for every stored row of a plain bitmap in
    // file order. The last row may stop at its pixels, without padding.
    template <typename RowFn> void forEachStoredRow(RowFn&& row) {
        const BmpLayout& b = m_layout;
        const size_t stride = static_cast<size_t>(b.stride());
        const size_t rowBytes = (static_cast<size_t>(b.width) * b.bpp + 7) / 8;
        const size_t height = static_cast<size_t>(b.height);
        const size_t perBlock = std::max<size_t>(1, kBlockBytes / stride);
        Bytes block((std::min(perBlock, height) - 1) * stride + rowBytes);
        for (size_t y = 0; y < height; y += perBlock) {
            const size_t rows = std::min(perBlock, height - y);
            m_source->read(b.dataOffset + y * stride, block.data(), (rows - 1) * stride + rowBytes);
            for (size_t r = 0; r < rows; ++r)
                row(y + r, block.data() + r * stride);
        }
    }

    void decodeRows(uint8_t* pixels, ptrdiff_t pitch) {
        const BmpLayout& b = m_layout;
        auto target = [&](size_t stored) {
            return pixels + static_cast<ptrdiff_t>(rowOf(stored)) * pitch;
        };
        if (b.indexed()) {
            if (b.packed())
                unpackRuns(pixels, pitch);
            else
                forEachStoredRow(
                    [&](size_t stored, const uint8_t* row) { unpackIndices(row, target(stored)); });
            checkIndices(pixels, pitch);
            return;
        }
        uint32_t anyAlpha = 0;
        forEachStoredRow([&](size_t stored, const uint8_t* row) {
            anyAlpha |= colourRow(row, reinterpret_cast<uint32_t*>(target(stored)));
        });
        if (!m_alphaKnown) {
            m_alphaKnown = true;
            m_alphaBits = anyAlpha ? std::popcount(b.masks[3]) : 0;
        }
        // An alpha mask whose values are all zero was not meant as alpha.
        if (b.masks[3] && !m_alphaBits)
            for (size_t y = 0; y < static_cast<size_t>(b.height); ++y) {
                auto* to = reinterpret_cast<uint32_t*>(pixels + static_cast<ptrdiff_t>(y) * pitch);
                for (size_t x = 0; x < static_cast<size_t>(b.width); ++x)
                    to[x] |= 0xFF000000u;
            }
    }

    void settleAlphaFromPixels() {
        const BmpLayout& b = m_layout;
        Channel alpha(b.masks[3]);
        const size_t bytes = b.bpp / 8u;
        uint32_t any = 0;
        forEachStoredRow([&](size_t, const uint8_t* p) {
            for (size_t x = 0; x < static_cast<size_t>(b.width); ++x, p += bytes)
                any |= alpha(bytes == 2 ? p[0] | p[1] << 8
                                        : p[0] | p[1] << 8 | p[2] << 16 |
                                              static_cast<uint32_t>(p[3]) << 24);
        });
        m_alphaBits = any ? std::popcount(b.masks[3]) : 0;
        m_alphaKnown = true;
    }

    void unpackIndices(const uint8_t* row, uint8_t* to) const {
        const BmpLayout& b = m_layout;
        const size_t width = static_cast<size_t>(b.width);
        if (b.bpp == 8) {
            memcpy(to, row, width);
            return;
        }
        const unsigned perByte = 8 / b.bpp;
        const uint8_t mask = static_cast<uint8_t>((1u << b.bpp) - 1);
        for (size_t x = 0; x < width; ++x) {
            unsigned shift = 8 - b.bpp * (x % perByte + 1);
            to[x] = static_cast<uint8_t>(row[x / perByte] >> shift) & mask;
        }
    }

    void checkIndices(const uint8_t* pixels, ptrdiff_t pitch) const {
        const BmpLayout& b = m_layout;
        const size_t width = static_cast<size_t>(b.width);
        for (size_t y = 0; y < static_cast<size_t>(b.height); ++y) {
            const uint8_t* row = pixels + static_cast<ptrdiff_t>(y) * pitch;
            uint8_t top = 0;
            for (size_t x = 0; x < width; ++x)
                top = std::max(top, row[x]);
            if (top >= b.paletteCount)
                fail("bitmap pixel index %u is beyond the %d palette entries", top, b.paletteCount);
        }
    }

    // One stored row of 16, 24 or 32-bit colours as ARGB words; returns the
    // alpha bits seen (0 when there is no alpha mask).
    uint32_t colourRow(const uint8_t* p, uint32_t* to) const {
        const BmpLayout& b = m_layout;
        const size_t width = static_cast<size_t>(b.width);
        if (b.bpp == 24) {
            for (size_t x = 0; x < width; ++x, p += 3)
                to[x] = packArgb(255, p[2], p[1], p[0]);
            return 0;
        }
        const bool standard =
            b.bpp == 32 && b.masks[0] == 0xFF0000 && b.masks[1] == 0xFF00 && b.masks[2] == 0xFF;
        if (standard && std::endian::native == std::endian::little) {
            // Stored B, G, R, A is already the word 0xAARRGGBB.
            memcpy(to, p, width * 4);
            if (b.masks[3] == 0xFF000000u) {
                uint32_t any = 0;
                for (size_t x = 0; x < width; ++x)
                    any |= to[x];
                return any >> 24;
            }
            if (b.masks[3] == 0) {
                for (size_t x = 0; x < width; ++x)
                    to[x] |= 0xFF000000u;
                return 0;
            }
        }
        const size_t bytes = b.bpp / 8u;
        Channel red(b.masks[0]), green(b.masks[1]), blue(b.masks[2]), alpha(b.masks[3]);
        uint32_t any = 0;
        for (size_t x = 0; x < width; ++x, p += bytes) {
            uint32_t v = bytes == 2
                             ? p[0] | p[1] << 8
                             : p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
            const uint32_t a = b.masks[3] ? alpha(v) : 255;
            any |= b.masks[3] ? a : 0;
            to[x] = packArgb(a, red(v), green(v), blue(v));
        }
        return any;
    }

    // RLE8 / RLE4: counted runs, and escapes for end of line, end of
    // bitmap, a jump, and literal stretches padded to 16 bits. Runs past
    // the row's end are cut off; pixels never written stay index 0.
    void unpackRuns(uint8_t* pixels, ptrdiff_t pitch) {
        const BmpLayout& b = m_layout;
        bool four = b.compression == kRle4;
        size_t width = static_cast<size_t>(b.width), height = static_cast<size_t>(b.height);
        for (size_t y = 0; y < height; ++y)
            memset(pixels + static_cast<ptrdiff_t>(y) * pitch, 0, width);
        Bytes packed = m_source->bytes(b.dataOffset, m_fileSize - b.dataOffset);
        ByteReader in(packed.data(), packed.size());
        size_t x = 0, y = 0;
        uint8_t* row = pixels + static_cast<ptrdiff_t>(height - 1) * pitch;
        auto nextRow = [&] {
            if (y < height) row = pixels + static_cast<ptrdiff_t>(height - 1 - y) * pitch;
        };
        while (y < height && in.remaining() >= 2) {
            uint8_t count = in.u8(), value = in.u8();
            if (count > 0) {
                if (!four) {
                    // A run is one value: fill what lies inside the row.
                    if (x < width) memset(row + x, value, std::min<size_t>(count, width - x));
                    x += count;
                } else {
                    for (unsigned i = 0; i < count; ++i, ++x)
                        if (x < width) row[x] = i & 1 ? value & 15 : value >> 4;
                }
            } else if (value == 0) {
                x = 0, ++y;
                nextRow();
            } else if (value == 1) {
                return;
            } else if (value == 2) {
                x += in.u8();
                y += in.u8();
                nextRow();
            } else {
                size_t bytes = four ? (value + 1u) / 2 : value;
                const uint8_t* literal = in.take(bytes);
                if (!four) {
                    if (x < width) memcpy(row + x, literal, std::min<size_t>(value, width - x));
                    x += value;
                } else {
                    for (unsigned i = 0; i < value; ++i, ++x)
                        if (x < width) row[x] = i & 1 ? literal[i / 2] & 15 : literal[i / 2] >> 4;
                }
                if (bytes & 1) in.skip(1);
            }
        }
    }

    HostPtr<Source> m_source;
    size_t m_fileSize = 0;
    BmpLayout m_layout;
    TavixColour m_palette[256] = {};
    int m_alphaBits = 0;
    bool m_alphaKnown = true;
};

// --- writing ---------------------------------------------------------------

int paletteEntries(const FrameView& frame) {
    int count = std::clamp(frame.numcolours, 0, 256);
    uint8_t top = 0;
    for (size_t y = 0; y < static_cast<size_t>(frame.height); ++y) {
        const uint8_t* row = frame.indices(y);
        for (size_t x = 0; x < static_cast<size_t>(frame.width); ++x)
            top = std::max(top, row[x]);
    }
    return std::max({count, top + 1, 1});
}

// A bitmap file holds one frame, so a caller's frame is written at once,
// straight from its rows; a frame handed over as a picture is written the
// same way when the file is finished.
class BmpWriter : public SinkWriter {
  public:
    void add(const TavixInfo& info, std::span<const uint8_t>, Picture&& picture) override {
        take(info);
        m_picture = std::move(picture);
    }

    bool addDirect(intptr_t stream, const TavixInfo& info, std::span<const uint8_t>,
                   const FrameView& frame) override {
        take(info);
        BlockSink sink(stream);
        write(frame, sink);
        m_streamed = true;
        return true;
    }

  private:
    void take(const TavixInfo& info) {
        if (m_has) fail("a bitmap file holds one image");
        m_keepAlpha = info.alphabits > 0;
        m_pixelsPerMetre = info.dpi > 0 && info.dpi < 1e6f
                               ? static_cast<int32_t>(std::lround(info.dpi / kMetresPerInch))
                               : 2835;
        m_has = true;
    }

    void finishInto(BlockSink& sink) override {
        if (!m_has) fail("no image was given to write");
        write(viewOf(m_picture), sink);
    }

    void write(const FrameView& p, BlockSink& sink) {
        // A colour table has no alpha: a palette image with transparent
        // entries is stored as 32-bit colours with an alpha mask instead.
        bool alpha = pixelsHaveAlpha(p);
        bool asIndexed = p.indexed && !alpha;
        int entries = asIndexed ? paletteEntries(p) : 0;
        uint16_t bpp = asIndexed ? 8 : alpha ? 32 : 24;
        uint32_t headerSize = alpha ? kV4Header : kInfoHeader;
        uint64_t stride = (uint64_t{static_cast<uint32_t>(p.width)} * bpp + 31) / 32 * 4;
        uint64_t offset = kFileHeaderBytes + headerSize + uint64_t(entries) * 4;
        uint64_t total = offset + stride * static_cast<uint32_t>(p.height);
        if (total > 0x7FFFFF00u) fail("the bitmap would be larger than 2 GB");
        ByteWriter out(sink.bytes());
        out.u8('B');
        out.u8('M');
        out.u32le(static_cast<uint32_t>(total));
        out.u32le(0);
        out.u32le(static_cast<uint32_t>(offset));
        writeHeader(out, p, headerSize, bpp, entries, static_cast<uint32_t>(stride * p.height));
        for (int i = 0; i < entries; ++i) {
            const TavixColour& c = p.palette[i];
            out.u8(c.blue);
            out.u8(c.green);
            out.u8(c.red);
            out.u8(0);
        }
        writeRows(p, sink, bpp, static_cast<size_t>(stride));
        sink.flush();
    }

    void writeHeader(ByteWriter& out, const FrameView& p, uint32_t headerSize, uint16_t bpp,
                     int entries, uint32_t imageBytes) {
        out.u32le(headerSize);
        out.u32le(static_cast<uint32_t>(p.width));
        out.u32le(static_cast<uint32_t>(p.height)); // positive: bottom-up
        out.u16le(1);
        out.u16le(bpp);
        out.u32le(headerSize == kV4Header ? kBitFields : kRgb);
        out.u32le(imageBytes);
        out.u32le(static_cast<uint32_t>(m_pixelsPerMetre));
        out.u32le(static_cast<uint32_t>(m_pixelsPerMetre));
        out.u32le(static_cast<uint32_t>(entries));
        out.u32le(0); // every colour is important
        if (headerSize != kV4Header) return;
        out.u32le(0x00FF0000);
        out.u32le(0x0000FF00);
        out.u32le(0x000000FF);
        out.u32le(0xFF000000);
        out.u32le(0x73524742); // colour space "sRGB"
        out.zeros(36 + 12);    // end points and gammas, unused for sRGB
    }

    // Rows bottom-up, each padded to the stride with zeros.
    void writeRows(const FrameView& p, BlockSink& sink, uint16_t bpp, size_t stride) {
        const size_t width = static_cast<size_t>(p.width);
        Bytes row(stride, 0);
        uint32_t colours[256];
        if (p.indexed)
            for (int i = 0; i < 256; ++i)
                colours[i] = p.paletteArgb(i);
        for (size_t y = static_cast<size_t>(p.height); y-- > 0;) {
            if (bpp == 8) {
                memcpy(row.data(), p.indices(y), width);
            } else if (bpp == 32 && !p.indexed && std::endian::native == std::endian::little) {
                memcpy(row.data(), p.argb(y), width * 4); // 0xAARRGGBB is stored B, G, R, A
            } else {
                uint8_t* to = row.data();
                const uint8_t* indices = p.indexed ? p.indices(y) : nullptr;
                const uint32_t* words = p.indexed ? nullptr : p.argb(y);
                for (size_t x = 0; x < width; ++x) {
                    uint32_t c = indices ? colours[indices[x]] : words[x];
                    *to++ = static_cast<uint8_t>(c);
                    *to++ = static_cast<uint8_t>(c >> 8);
                    *to++ = static_cast<uint8_t>(c >> 16);
                    if (bpp == 32) *to++ = static_cast<uint8_t>(c >> 24);
                }
            }
            sink.put(row.data(), stride);
        }
    }

    bool pixelsHaveAlpha(const FrameView& p) const {
        if (!m_keepAlpha) return false;
        if (p.indexed) {
            int entries = paletteEntries(p);
            for (int i = 0; i < entries; ++i)
                if (p.palette[i].alpha != 255) return true;
            return false;
        }
        for (size_t y = 0; y < static_cast<size_t>(p.height); ++y) {
            const uint32_t* row = p.argb(y);
            uint32_t all = 0xFF000000u;
            for (size_t x = 0; x < static_cast<size_t>(p.width); ++x)
                all &= row[x];
            if (all >> 24 != 255) return true;
        }
        return false;
    }

    Picture m_picture;
    bool m_has = false;
    bool m_keepAlpha = false;
    int32_t m_pixelsPerMetre = 2835;
};

// --- the driver ------------------------------------------------------------

void about(TavixAbout& about) {
    fillAbout(about, kBmpId, "bmp", kCapRead | kCapWrite | kCapPalette | kCapTrueColour,
              {".bmp", ".dib"}, "Windows Bitmap");
    about.colourlimit = 256;
    about.namelimit = 0; // names are not stored at all
    copyText(about.notes, sizeof about.notes,
             "Reads 1/4/8-bit (plain or RLE), 16/24/32-bit; writes 8, 24 or 32-bit unpacked");
}

// A bitmap header good enough to claim the file by its content.
bool plausible(std::span<const uint8_t> head) {
    if (head.size() < kFileHeaderBytes + 16 || head[0] != 'B' || head[1] != 'M') return false;
    ByteReader in(head.data(), head.size());
    in.seek(10);
    uint32_t offset = in.u32le();
    uint32_t size = in.u32le();
    if (!knownHeaderSize(size) || offset < kFileHeaderBytes + size) return false;
    uint16_t planes, bpp;
    if (size == kCoreHeader) {
        in.skip(4);
    } else {
        in.skip(8);
    }
    planes = in.u16le();
    bpp = in.u16le();
    return planes == 1 && (bpp == 1 || bpp == 4 || bpp == 8 || bpp == 16 || bpp == 24 || bpp == 32);
}

DetectScore detect(std::span<const uint8_t> head, const char* path) {
    if (plausible(head)) return kByContent;
    return hasExtension(path, ".bmp") || hasExtension(path, ".dib") ? kByName : kNotMine;
}

HostPtr<FrameReader> open(Bytes&& file) {
    return makeHost<BmpReader>(memorySource(std::move(file)));
}

HostPtr<FrameReader> openSource(HostPtr<Source>&& source) {
    return makeHost<BmpReader>(std::move(source));
}

HostPtr<FrameWriter> create(int frames) {
    if (frames != 1) {
        report("tavix: the Windows Bitmap format holds one image per file; %d were to be written\n",
               frames);
        return nullptr;
    }
    return makeHost<BmpWriter>();
}

} // namespace

extern const Driver kBmpDriver = {"bmp", about, detect, open, create, openSource};

} // namespace tavix

// Targa (.tga): colour-mapped, true-colour and greyscale images, plain or
// run-length packed, with either origin.
//
// Reading: colour-mapped images with 8-bit indices come back as indexed
// frames (map entries of 15, 16, 24 or 32 bits; index v is palette entry v,
// so a map that starts above 0 keeps the file's index values); greyscale
// (8-bit, or 16-bit grey + alpha) and 15/16/24/32-bit true colour come back
// as 32-bit frames. The image ID field and any TGA 2.0 extension area are
// skipped. A 32-bit image whose descriptor claims no alpha bits and whose
// alpha bytes are all zero was written by a tool that left the byte unused,
// so it reads as opaque; any non-zero alpha byte is taken as real alpha.
//
// Writing: indexed frames as colour-mapped 8-bit with 24-bit map entries, or
// 32-bit entries when the record has alpha bits and some entry is not
// opaque; true colour as 24-bit when the record has no alpha bits or every
// pixel is opaque, else 32-bit. Whenever alpha is stored the descriptor
// names 8 alpha bits, so no reader takes it for an unused byte. Rows are
// stored top to bottom with the top-left origin bit set: bottom-up files are
// valid too, but some viewers ignore the origin and show them upside down,
// while every reader honours the top-left bit. Rows are packed per row when
// the record's `packed` is set, and a TGA 2.0 footer follows.
// Frame names, points and comments have no place in the format and are
// not stored.
//
// Detection: the format has no signature, so a header is only "plausible"
// when every field holds a defined value and the image fits the file. A
// plausible header with a Targa extension (or with no name to judge by)
// counts as content; a Targa extension with an implausible header still
// selects this driver so the user gets its specific error; anything else
// is not claimed.

#include "tavix/core/ByteIO.h"
#include "tavix/core/Driver.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace tavix {
namespace {

constexpr uint32_t kTgaId = 0x54474100;
constexpr size_t kHeaderBytes = 18;
constexpr size_t kMaxPacket = 128;
constexpr uint8_t kTopLeftOrigin = 0x20; // descriptor bit 5: first stored row is the top
const char kFooterSignature[] = "TRUEVISION-XFILE.";

enum ImageKind { kMapped = 1, kTrueColour = 2, kGrey = 3 };

struct TgaHeader {
    uint8_t idLength = 0;
    uint8_t mapType = 0;
    uint8_t imageType = 0;
    uint16_t mapFirst = 0;
    uint16_t mapLength = 0;
    uint8_t mapBits = 0;
    uint16_t width = 0;
    uint16_t height = 0;
    uint8_t depth = 0;
    uint8_t descriptor = 0;

    int kind() const { return imageType & 7; }
    bool packed() const { return (imageType & 8) != 0; }
    int alphaBits() const { return descriptor & 15; }
    bool topDown() const { return (descriptor & 0x20) != 0; }
    bool rightToLeft() const { return (descriptor & 0x10) != 0; }
    size_t pixelBytes() const { return (depth + 7u) / 8u; }
    size_t mapBytes() const { return mapType ? size_t{mapLength} * ((mapBits + 7u) / 8u) : 0; }
    size_t dataOffset() const { return kHeaderBytes + idLength + mapBytes(); }
};

TgaHeader parseHeader(const uint8_t* p) {
    TgaHeader h;
    h.idLength = p[0];
    h.mapType = p[1];
    h.imageType = p[2];
    h.mapFirst = static_cast<uint16_t>(p[3] | p[4] << 8);
    h.mapLength = static_cast<uint16_t>(p[5] | p[6] << 8);
    h.mapBits = p[7];
    h.width = static_cast<uint16_t>(p[12] | p[13] << 8);
    h.height = static_cast<uint16_t>(p[14] | p[15] << 8);
    h.depth = p[16];
    h.descriptor = p[17];
    return h;
}

bool isMapEntrySize(int bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

// Why the header cannot describe a Targa image we read, or null when it can.
const char* headerProblem(const TgaHeader& h) {
    if (h.mapType > 1) return "the colour map type is not defined";
    if (h.imageType != 1 && h.imageType != 2 && h.imageType != 3 && h.imageType != 9 &&
        h.imageType != 10 && h.imageType != 11)
        return h.imageType == 0 ? "the file holds no image data" : "the image type is not defined";
    if (h.descriptor & 0xC0) return "interleaved rows are not supported";
    if (h.width == 0 || h.height == 0) return "the image is empty";
    if (h.mapType == 1 && !isMapEntrySize(h.mapBits))
        return "the colour map entry size is not defined";
    int alpha = h.alphaBits();
    switch (h.kind()) {
    case kMapped:
        if (h.mapType != 1 || h.mapLength == 0) return "a colour-mapped image has no colour map";
        if (h.depth != 8) return "only 8-bit colour map indices are supported";
        if (h.mapFirst > 255) return "the colour map starts beyond index 255";
        if (alpha > 8) return "the alpha bit count is not defined";
        return nullptr;
    case kTrueColour:
        if (h.depth == 15 || h.depth == 24)
            return alpha == 0 ? nullptr : "the alpha bit count does not fit the depth";
        if (h.depth == 16)
            return alpha <= 1 ? nullptr : "the alpha bit count does not fit the depth";
        if (h.depth == 32)
            return alpha == 0 || alpha == 8 ? nullptr
                                            : "the alpha bit count does not fit the depth";
        return "the pixel depth is not defined for true colour";
    default: // greyscale
        if (h.depth == 8)
            return alpha == 0 ? nullptr : "the alpha bit count does not fit the depth";
        if (h.depth == 16)
            return alpha == 0 || alpha == 8 ? nullptr
                                            : "the alpha bit count does not fit the depth";
        return "the pixel depth is not defined for greyscale";
    }
}

// The fewest bytes that can hold `pixels` pixels: packed data needs at
// least one packet of header + one pixel for every 128 pixels.
size_t leastDataBytes(const TgaHeader& h, size_t pixels) {
    if (!h.packed()) return pixels * h.pixelBytes();
    return (pixels + kMaxPacket - 1) / kMaxPacket * (1 + h.pixelBytes());
}

const char* fileProblem(const TgaHeader& h, size_t fileSize) {
    if (const char* problem = headerProblem(h)) return problem;
    size_t pixels = size_t{h.width} * h.height;
    if (h.dataOffset() > fileSize || leastDataBytes(h, pixels) > fileSize - h.dataOffset())
        return "the file is too short for the image its header describes";
    return nullptr;
}

uint8_t expand5(uint32_t v) {
    return static_cast<uint8_t>((v << 3) | (v >> 2));
}

// One pixel or map entry of 15/16/24/32 bits as ARGB. `alphaBit`: a 16-bit
// value's top bit is alpha rather than unused.
uint32_t colourAt(const uint8_t* p, int bits, bool alphaBit) {
    if (bits <= 16) {
        uint32_t v = p[0] | p[1] << 8;
        uint32_t a = alphaBit && bits == 16 ? ((v & 0x8000) ? 255 : 0) : 255;
        return packArgb(a, expand5(v >> 10 & 31), expand5(v >> 5 & 31), expand5(v & 31));
    }
    uint32_t a = bits == 32 ? p[3] : 255;
    return packArgb(a, p[2], p[1], p[0]);
}

bool allAlphaClear(const uint32_t* colours, size_t count) {
    for (size_t i = 0; i < count; ++i)
        if (colours[i] >> 24) return false;
    return true;
}

void makeOpaque(uint32_t* colours, size_t count) {
    for (size_t i = 0; i < count; ++i)
        colours[i] |= 0xFF000000u;
}

// A 32-bit image or map whose descriptor claims no alpha bits and whose alpha
// bytes are all zero never meant them as alpha. Returns the alpha bits the
// colours really carry.
int settleAlpha(const TgaHeader& h, int bits, uint32_t* colours, size_t count) {
    if (bits != 32) return bits == 16 && h.kind() != kMapped ? h.alphaBits() : 0;
    if (h.alphaBits() == 0 && allAlphaClear(colours, count)) {
        makeOpaque(colours, count);
        return 0;
    }
    return 8;
}

// Stored rows of plain images, and packed data, are read in blocks of about
// this many bytes.
constexpr size_t kBlockBytes = size_t{4} << 20;

// Hands out the stored pixels of a run-length packed image a row at a time;
// packets may run on from one row into the next. The packed data is read
// through a window of kBlockBytes, refilled as the packets use it up, so a
// large file is never held whole.
class RunUnpacker {
  public:
    RunUnpacker(Source& source, uint64_t offset, uint64_t end, size_t pixelBytes, size_t pixels)
        : m_source(source), m_next(offset), m_end(end), m_pixelBytes(pixelBytes), m_left(pixels) {}

    void fill(uint8_t* to, size_t count) {
        const size_t bytes = m_pixelBytes;
        while (count) {
            if (m_pending == 0) {
                uint8_t head = *take(1);
                size_t n = (head & 127u) + 1;
                if (n > m_left)
                    fail("a Targa run-length packet of %zu pixels runs past the end of the image",
                         n);
                m_left -= n;
                m_pending = n;
                m_run = (head & 128) != 0;
                if (m_run) memcpy(m_value, take(bytes), bytes);
            }
            size_t k = std::min(m_pending, count);
            if (m_run && bytes == 1) {
                memset(to, m_value[0], k);
            } else if (m_run && bytes == 4) {
                uint32_t value;
                memcpy(&value, m_value, 4);
                for (size_t i = 0; i < k; ++i)
                    memcpy(to + 4 * i, &value, 4); // a fixed size: one store each
            } else if (m_run) {
                for (size_t i = 0; i < k; ++i)
                    memcpy(to + i * bytes, m_value, bytes);
            } else {
                memcpy(to, take(k * bytes), k * bytes);
            }
            to += k * bytes;
            count -= k;
            m_pending -= k;
        }
    }

  private:
    // The next n bytes of packed data (n is at most one packet's pixels).
    const uint8_t* take(size_t n) {
        if (m_window.size() - m_at < n) refill(n);
        const uint8_t* p = m_window.data() + m_at;
        m_at += n;
        return p;
    }

    void refill(size_t n) {
        const size_t kept = m_window.size() - m_at;
        const uint64_t more = std::min<uint64_t>(kBlockBytes, m_end - m_next);
        if (kept + more < n)
            fail("the Targa packed data ends early: %zu bytes needed at offset %llu, %zu left", n,
                 (unsigned long long)(m_next - kept), static_cast<size_t>(kept + more));
        if (kept) memmove(m_window.data(), m_window.data() + m_at, kept);
        m_window.resize(kept + static_cast<size_t>(more));
        m_source.read(m_next, m_window.data() + kept, static_cast<size_t>(more));
        m_next += more;
        m_at = 0;
    }

    Source& m_source;
    uint64_t m_next; // file offset of the first byte not yet in the window
    uint64_t m_end;
    Bytes m_window;
    size_t m_at = 0;
    size_t m_pixelBytes;
    size_t m_left;
    size_t m_pending = 0;
    bool m_run = false;
    uint8_t m_value[4] = {};
};

// The reader takes the header and colour map when the file is opened and
// reads the pixel data only when the frame is decoded, in blocks straight
// into the caller's rows. Only one thing needs the pixels before that: a
// 32-bit image whose descriptor claims no alpha bits, whose alpha bytes
// decide whether the frame has alpha at all.
class TgaReader : public FrameReader {
  public:
    explicit TgaReader(HostPtr<Source>&& source) : m_source(std::move(source)) {
        uint64_t size = m_source->size();
        if (size < kHeaderBytes) fail("the file is too short for a Targa header");
        if (size > SIZE_MAX) fail("the file is too large");
        uint8_t raw[kHeaderBytes];
        m_source->read(0, raw, kHeaderBytes);
        m_header = parseHeader(raw);
        if (const char* problem = fileProblem(m_header, static_cast<size_t>(size)))
            fail("not a readable Targa file: %s", problem);
        m_fileSize = static_cast<size_t>(size);
        checkedPixelCount(m_header.width, m_header.height);
        const TgaHeader& h = m_header;
        if (h.kind() == kMapped)
            readMap(m_source->bytes(kHeaderBytes + h.idLength, h.mapBytes()).data());
        else if (h.kind() == kGrey)
            m_alphaBits = h.depth == 16 ? 8 : 0;
        else if (h.depth == 32 && h.alphaBits() == 0)
            m_alphaKnown = false; // the pixels tell
        else
            m_alphaBits = h.depth == 16 ? h.alphaBits() : h.depth == 32 ? 8 : 0;
    }

    int frameCount() const override { return 1; }

    void describe(int, TavixInfo& info, Bytes&) override {
        const TgaHeader& h = m_header;
        bool mapped = h.kind() == kMapped;
        if (!m_alphaKnown) settleAlphaFromPixels();
        info.formatid = kTgaId;
        info.width = h.width;
        info.height = h.height;
        info.bufferbpp = mapped ? 8 : 32;
        info.bpp = h.depth;
        info.numcolours = mapped ? m_numColours : 0;
        if (mapped) memcpy(info.colours, m_palette, sizeof info.colours);
        info.subtype = h.imageType;
        info.packed = h.packed() ? 1 : 0;
        info.framesize = static_cast<int32_t>(m_fileSize);
        info.alphabits = m_alphaBits;
        int colourBits = mapped ? h.mapBits : h.depth;
        int channel = h.kind() == kGrey ? 8 : colourBits <= 16 ? 5 : 8;
        info.redbits = info.greenbits = info.bluebits = channel;
    }

    void decode(int, Picture& out) override {
        const TgaHeader& h = m_header;
        if (h.kind() == kMapped) {
            out.makeIndexed(h.width, h.height);
            memcpy(out.palette, m_palette, sizeof out.palette);
            out.numcolours = m_numColours;
            decodeRows(out.indices.data(), h.width);
        } else {
            out.makeTrueColour(h.width, h.height);
            decodeRows(reinterpret_cast<uint8_t*>(out.argb.data()),
                       static_cast<ptrdiff_t>(h.width) * 4);
        }
    }

    bool decodeInto(int, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) override {
        const TgaHeader& h = m_header;
        bool mapped = h.kind() == kMapped;
        if (info.width != h.width || info.height != h.height || (info.bufferbpp <= 8) != mapped)
            return false;
        decodeRows(pixels, pitch);
        if (mapped) memcpy(info.colours, m_palette, sizeof info.colours);
        return true;
    }

  private:
    void readMap(const uint8_t* map) {
        const TgaHeader& h = m_header;
        size_t entryBytes = (h.mapBits + 7u) / 8u;
        size_t usable = std::min<size_t>(h.mapLength, 256u - h.mapFirst);
        uint32_t colours[256];
        for (size_t i = 0; i < usable; ++i)
            colours[i] = colourAt(map + i * entryBytes, h.mapBits, false);
        m_alphaBits = settleAlpha(h, h.mapBits, colours, usable);
        Picture palette;
        for (size_t i = 0; i < usable; ++i)
            palette.setPaletteArgb(static_cast<int>(h.mapFirst + i), colours[i]);
        memcpy(m_palette, palette.palette, sizeof m_palette);
        m_numColours = static_cast<int32_t>(h.mapFirst + usable);
    }

    // Calls `row(stored, bytes)` for every stored row in file order.
    template <typename RowFn> void forEachStoredRow(RowFn&& row) {
        const TgaHeader& h = m_header;
        const size_t rowBytes = size_t{h.width} * h.pixelBytes();
        const size_t offset = h.dataOffset();
        if (h.packed()) {
            RunUnpacker unpacker(*m_source, offset, m_fileSize, h.pixelBytes(),
                                 size_t{h.width} * h.height);
            Bytes line(rowBytes);
            for (size_t y = 0; y < h.height; ++y) {
                unpacker.fill(line.data(), h.width);
                row(y, line.data());
            }
            return;
        }
        const size_t perBlock = std::max<size_t>(1, kBlockBytes / rowBytes);
        Bytes block(std::min<size_t>(perBlock, h.height) * rowBytes);
        for (size_t y = 0; y < h.height; y += perBlock) {
            size_t rows = std::min<size_t>(perBlock, h.height - y);
            m_source->read(offset + y * rowBytes, block.data(), rows * rowBytes);
            for (size_t r = 0; r < rows; ++r)
                row(y + r, block.data() + r * rowBytes);
        }
    }

    void settleAlphaFromPixels() {
        uint8_t any = 0;
        forEachStoredRow([&](size_t, const uint8_t* data) {
            for (size_t x = 0; x < m_header.width; ++x)
                any |= data[x * 4 + 3];
        });
        m_alphaBits = any ? 8 : 0;
        m_alphaKnown = true;
    }

    // Decodes into rows of 32-bit words (true colour and grey) or indices
    // (colour-mapped), `pitch` bytes apart, top row first.
    void decodeRows(uint8_t* pixels, ptrdiff_t pitch) {
        const TgaHeader& h = m_header;
        const size_t width = h.width;
        auto target = [&](size_t stored) {
            size_t y = h.topDown() ? stored : h.height - 1 - stored;
            return pixels + static_cast<ptrdiff_t>(y) * pitch;
        };
        if (h.kind() == kMapped) {
            const unsigned first = h.mapFirst, end = first + h.mapLength;
            forEachStoredRow([&](size_t stored, const uint8_t* data) {
                uint8_t* to = target(stored);
                bool outside = false;
                for (size_t x = 0; x < width; ++x)
                    outside |= data[x] < first || data[x] >= end;
                if (outside)
                    for (size_t x = 0; x < width; ++x)
                        if (data[x] < first || data[x] >= end)
                            fail("Targa pixel value %u is outside the colour map (%u to %u)",
                                 data[x], first, end - 1);
                memcpy(to, data, width);
                if (h.rightToLeft()) std::reverse(to, to + width);
            });
            return;
        }
        const bool grey = h.kind() == kGrey;
        const int depth = h.depth;
        const bool alphaBit = h.alphaBits() > 0;
        // A 32-bit image with unsettled alpha keeps its bytes as they are
        // until every row has been seen.
        const bool forceOpaque = depth == 32 && !grey && m_alphaKnown && m_alphaBits == 0;
        uint8_t anyAlpha = 0;
        forEachStoredRow([&](size_t stored, const uint8_t* data) {
            auto* to = reinterpret_cast<uint32_t*>(target(stored));
            if (grey && depth == 16) {
                for (size_t x = 0; x < width; ++x)
                    to[x] = packArgb(data[2 * x + 1], data[2 * x], data[2 * x], data[2 * x]);
            } else if (grey) {
                for (size_t x = 0; x < width; ++x)
                    to[x] = packArgb(255, data[x], data[x], data[x]);
            } else if (depth == 32 && !forceOpaque && std::endian::native == std::endian::little) {
                // Stored B, G, R, A is already the word 0xAARRGGBB.
                memcpy(to, data, width * 4);
                if (!m_alphaKnown)
                    for (size_t x = 0; x < width; ++x)
                        anyAlpha |= data[4 * x + 3];
            } else if (depth == 32) {
                for (size_t x = 0; x < width; ++x) {
                    const uint8_t* p = data + 4 * x;
                    anyAlpha |= p[3];
                    to[x] = packArgb(forceOpaque ? 255 : p[3], p[2], p[1], p[0]);
                }
            } else if (depth == 24) {
                for (size_t x = 0; x < width; ++x) {
                    const uint8_t* p = data + 3 * x;
                    to[x] = packArgb(255, p[2], p[1], p[0]);
                }
            } else {
                for (size_t x = 0; x < width; ++x)
                    to[x] = colourAt(data + 2 * x, depth, alphaBit);
            }
            if (h.rightToLeft()) std::reverse(to, to + width);
        });
        if (depth == 32 && !grey && !m_alphaKnown) {
            m_alphaKnown = true;
            m_alphaBits = anyAlpha ? 8 : 0;
            if (!anyAlpha)
                for (size_t y = 0; y < h.height; ++y) {
                    auto* row =
                        reinterpret_cast<uint32_t*>(pixels + static_cast<ptrdiff_t>(y) * pitch);
                    makeOpaque(row, width);
                }
        }
    }

    HostPtr<Source> m_source;
    TgaHeader m_header;
    size_t m_fileSize = 0;
    int m_alphaBits = 0;
    bool m_alphaKnown = true;
    TavixColour m_palette[256] = {};
    int32_t m_numColours = 0;
};

// --- writing ---------------------------------------------------------------

// Entries an indexed frame needs: its stated count, widened to cover every
// index that occurs.
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

// Packs one row of `count` pixels of `bytes` bytes: repeats of two or more
// pixels become run packets, everything between them raw packets.
void packRow(ByteWriter& out, const uint8_t* row, size_t count, size_t bytes) {
    auto same = [&](size_t a, size_t b) {
        return memcmp(row + a * bytes, row + b * bytes, bytes) == 0;
    };
    size_t at = 0;
    while (at < count) {
        size_t run = 1;
        while (at + run < count && run < kMaxPacket && same(at, at + run))
            ++run;
        if (run >= 2) {
            out.u8(0x80 | (run - 1));
            out.bytes(row + at * bytes, bytes);
            at += run;
            continue;
        }
        size_t raw = 1;
        while (at + raw < count && raw < kMaxPacket &&
               !(at + raw + 1 < count && same(at + raw, at + raw + 1)))
            ++raw;
        out.u8(raw - 1);
        out.bytes(row + at * bytes, raw * bytes);
        at += raw;
    }
}

// A Targa file holds one frame and nothing in it depends on another, so the
// writer writes a caller's frame at once, straight from its rows; a frame
// handed over as a picture is written the same way when the file is
// finished.
class TgaWriter : public SinkWriter {
  public:
    void add(const TavixInfo& info, std::span<const uint8_t>, Picture&& picture) override {
        take(info, picture.width, picture.height);
        m_picture = std::move(picture);
    }

    bool addDirect(intptr_t stream, const TavixInfo& info, std::span<const uint8_t>,
                   const FrameView& frame) override {
        take(info, frame.width, frame.height);
        BlockSink sink(stream);
        write(frame, sink);
        m_streamed = true;
        return true;
    }

  private:
    void take(const TavixInfo& info, int32_t width, int32_t height) {
        if (m_has) fail("a Targa file holds one image");
        if (width > 65535 || height > 65535)
            fail("Targa images are at most 65535 x 65535 pixels; this one is %d x %d", width,
                 height);
        m_packed = info.packed != 0;
        m_keepAlpha = info.alphabits > 0;
        m_has = true;
    }

    void finishInto(BlockSink& sink) override {
        if (!m_has) fail("no image was given to write");
        write(viewOf(m_picture), sink);
    }

    void write(const FrameView& p, BlockSink& sink) {
        ByteWriter out(sink.bytes());
        int entries = p.indexed ? paletteEntries(p) : 0;
        bool alpha = p.indexed ? paletteHasAlpha(p, entries) : pixelsHaveAlpha(p);
        int depth = p.indexed ? 8 : alpha ? 32 : 24;
        out.u8(0);                 // no image ID
        out.u8(p.indexed ? 1 : 0); // colour map type
        out.u8((p.indexed ? kMapped : kTrueColour) | (m_packed ? 8 : 0));
        out.u16le(0); // first map entry
        out.u16le(entries);
        out.u8(p.indexed ? (alpha ? 32 : 24) : 0);
        out.u16le(0); // x origin
        out.u16le(0); // y origin
        out.u16le(p.width);
        out.u16le(p.height);
        out.u8(depth);
        out.u8((alpha ? 8 : 0) | kTopLeftOrigin); // alpha bits of the pixel or map entry
        if (p.indexed) writeMap(out, p, entries, alpha);
        writePixels(p, sink, depth / 8, alpha);
        ByteWriter end(sink.bytes());
        end.u32le(0); // no extension area
        end.u32le(0); // no developer area
        end.bytes(kFooterSignature, sizeof kFooterSignature);
        sink.flush();
    }

    bool paletteHasAlpha(const FrameView& p, int entries) const {
        if (!m_keepAlpha) return false;
        for (int i = 0; i < entries; ++i)
            if (p.palette[i].alpha != 255) return true;
        return false;
    }

    bool pixelsHaveAlpha(const FrameView& p) const {
        if (!m_keepAlpha) return false;
        for (size_t y = 0; y < static_cast<size_t>(p.height); ++y) {
            const uint32_t* row = p.argb(y);
            uint32_t all = 0xFF000000u;
            for (size_t x = 0; x < static_cast<size_t>(p.width); ++x)
                all &= row[x];
            if (all >> 24 != 255) return true;
        }
        return false;
    }

    void writeMap(ByteWriter& out, const FrameView& p, int entries, bool alpha) {
        for (int i = 0; i < entries; ++i) {
            const TavixColour& c = p.palette[i];
            out.u8(c.blue);
            out.u8(c.green);
            out.u8(c.red);
            if (alpha) out.u8(c.alpha);
        }
    }

    void writePixels(const FrameView& p, BlockSink& sink, size_t bytes, bool alpha) {
        const size_t width = static_cast<size_t>(p.width);
        const bool asStored = p.indexed || (alpha && std::endian::native == std::endian::little);
        if (asStored && !m_packed && static_cast<size_t>(p.pitch) == width * bytes) {
            sink.put(p.base, width * bytes * static_cast<size_t>(p.height)); // rows back to back
            return;
        }
        Bytes row(asStored ? 0 : width * bytes);
        for (size_t y = 0; y < static_cast<size_t>(p.height); ++y) {
            // Indices, and words on a little-endian host (B, G, R, A in
            // memory), are already the stored bytes.
            const uint8_t* data = p.indices(y);
            if (!asStored) {
                const uint32_t* from = p.argb(y);
                for (size_t x = 0; x < width; ++x) {
                    uint32_t c = from[x];
                    uint8_t* to = &row[x * bytes];
                    to[0] = static_cast<uint8_t>(c);
                    to[1] = static_cast<uint8_t>(c >> 8);
                    to[2] = static_cast<uint8_t>(c >> 16);
                    if (alpha) to[3] = static_cast<uint8_t>(c >> 24);
                }
                data = row.data();
            }
            if (m_packed) {
                ByteWriter out(sink.bytes());
                packRow(out, data, width, bytes);
                sink.rowDone();
            } else {
                sink.put(data, width * bytes);
            }
        }
    }

    Picture m_picture;
    bool m_has = false;
    bool m_packed = false;
    bool m_keepAlpha = false;
};

// --- the driver ------------------------------------------------------------

void about(TavixAbout& about) {
    fillAbout(about, kTgaId, "tga",
              kCapRead | kCapWrite | kCapPalette | kCapTrueColour | kCapPacked, {".tga", ".tpic"},
              "Targa");
    about.colourlimit = 256;
    about.namelimit = 0; // names are not stored at all
    copyText(about.notes, sizeof about.notes,
             "Reads 8-bit mapped, 8/16-bit grey, 15/16/24/32-bit true colour, plain or RLE; one "
             "image per file");
}

// The file dialog offers the two extensions in use today; the older
// Truevision ones still count as Targa names when a file is opened.
bool hasTargaName(const char* path) {
    for (const char* extension : {".tga", ".tpic", ".vda", ".icb", ".vst"})
        if (hasExtension(path, extension)) return true;
    return false;
}

DetectScore detect(std::span<const uint8_t> head, const char* path) {
    bool named = hasTargaName(path);
    bool nameless = !path || !*path;
    if (!named && !nameless) return kNotMine;
    bool plausible = false;
    if (head.size() >= kHeaderBytes) {
        TgaHeader h = parseHeader(head.data());
        // The head may be a prefix of the file: judge the size only when it
        // is the whole file.
        plausible = head.size() < kDetectBytes ? fileProblem(h, head.size()) == nullptr
                                               : headerProblem(h) == nullptr;
    }
    if (plausible) return kByContent;
    return named ? kByName : kNotMine;
}

HostPtr<FrameReader> openSource(HostPtr<Source>&& source) {
    return makeHost<TgaReader>(std::move(source));
}

HostPtr<FrameReader> open(Bytes&& file) {
    return openSource(memorySource(std::move(file)));
}

HostPtr<FrameWriter> create(int frames) {
    if (frames != 1) {
        report("tavix: the Targa format holds one image per file; %d were to be written\n", frames);
        return nullptr;
    }
    return makeHost<TgaWriter>();
}

} // namespace

extern const Driver kTgaDriver = {"tga", about, detect, open, create, openSource};

} // namespace tavix

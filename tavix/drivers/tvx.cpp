// "Tavix Images": Zy's own lossless container. It keeps every frame's whole
// information record (including any driver tail) next to its pixels, so any
// image can be parked in a .tvx file and come back unchanged.
//
// Layout (little-endian):
//   "TVX1", u32 frame count
//   per frame: u32 record size, the record, u32 pixel bits (8 or 32),
//              u32 pixel byte count, the pixels (rows top to bottom, no padding;
//              8-bit: indices with the palette in the record; 32-bit: ARGB words)

#include "tavix/core/ByteIO.h"
#include "tavix/core/Driver.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tavix {
namespace {

constexpr uint32_t kTvxId = 0x54565800; // "TVX"
constexpr uint32_t kMaxRecord = 16 << 20;
constexpr size_t kFrameHeadBytes = 4; // record size
constexpr size_t kPixelHeadBytes = 8; // pixel bits, pixel byte count
constexpr size_t kBlockBytes = size_t{4} << 20;

struct StoredFrame {
    uint64_t record; // offset of the record in the file
    uint32_t recordSize;
    uint32_t bits;
    uint64_t pixels; // offset of the pixels
    int32_t width;
    int32_t height;
};

uint32_t u32at(const uint8_t* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// Stored pixel words are little-endian ARGB; on such a host they are the
// words themselves.
void wordsFromFile(uint32_t* words, size_t count) {
    if constexpr (std::endian::native != std::endian::little)
        for (size_t i = 0; i < count; ++i) {
            const auto* p = reinterpret_cast<const uint8_t*>(&words[i]);
            words[i] = u32at(p);
        }
}

// The reader walks the frame headers when the file is opened, skipping the
// pixels, and keeps only where each frame lies: listing a file reads its
// records and nothing else, and decoding reads one frame's pixels in large
// blocks, straight into the caller's rows where it can.
class TvxReader : public FrameReader {
  public:
    explicit TvxReader(HostPtr<Source>&& source) : m_source(std::move(source)) {
        const uint64_t size = m_source->size();
        uint8_t head[8];
        m_source->read(0, head, sizeof head);
        if (memcmp(head, "TVX1", 4) != 0) fail("not a Tavix Images file");
        const uint32_t count = u32at(head + 4);
        if (count > (size - sizeof head) / (kTavixInfoSize + 12))
            fail("frame count %u does not fit the file", count);
        uint64_t at = sizeof head;
        for (uint32_t i = 0; i < count; ++i)
            m_frames.push_back(parseFrame(at, i));
    }

    int frameCount() const override { return static_cast<int>(m_frames.size()); }

    void describe(int frame, TavixInfo& info, Bytes& tail) override {
        const StoredFrame& f = m_frames[frame];
        m_source->read(f.record, &info, sizeof info);
        tail.resize(f.recordSize - sizeof info);
        m_source->read(f.record + sizeof info, tail.data(), tail.size());
    }

    void decode(int frame, Picture& out) override {
        const StoredFrame& f = m_frames[frame];
        if (f.bits == 8) {
            out.makeIndexed(f.width, f.height);
            readColours(f, out.palette, out.numcolours);
            readRows(f, out.indices.data(), f.width);
        } else {
            out.makeTrueColour(f.width, f.height);
            readRows(f, reinterpret_cast<uint8_t*>(out.argb.data()),
                     static_cast<ptrdiff_t>(f.width) * 4);
        }
    }

    bool decodeInto(int frame, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) override {
        const StoredFrame& f = m_frames[frame];
        if (info.width != f.width || info.height != f.height ||
            (info.bufferbpp <= 8) != (f.bits == 8))
            return false;
        if (f.bits == 8) {
            int32_t count = 0;
            readColours(f, info.colours, count);
        }
        readRows(f, pixels, pitch);
        return true;
    }

  private:
    StoredFrame parseFrame(uint64_t& at, uint32_t index) {
        StoredFrame f;
        uint8_t size[kFrameHeadBytes];
        m_source->read(at, size, sizeof size);
        f.recordSize = u32at(size);
        if (f.recordSize < static_cast<uint32_t>(kTavixInfoSize) || f.recordSize > kMaxRecord)
            fail("frame %u: bad record size %u", index, f.recordSize);
        f.record = at + sizeof size;
        TavixInfo info;
        m_source->read(f.record, &info, sizeof info);
        uint8_t pixelHead[kPixelHeadBytes];
        m_source->read(f.record + f.recordSize, pixelHead, sizeof pixelHead);
        f.bits = u32at(pixelHead);
        const uint32_t byteCount = u32at(pixelHead + 4);
        const size_t pixels = checkedPixelCount(info.width, info.height);
        if ((f.bits != 8 && f.bits != 32) || (info.bufferbpp <= 8) != (f.bits == 8))
            fail("frame %u: pixel depth %u does not match the record", index, f.bits);
        if (byteCount != pixels * (f.bits / 8)) fail("frame %u: pixel data size is wrong", index);
        f.pixels = f.record + f.recordSize + sizeof pixelHead;
        if (byteCount > m_source->size() - f.pixels)
            fail("the file ends early: frame %u needs %u pixel bytes at offset %llu", index,
                 byteCount, (unsigned long long)f.pixels);
        f.width = info.width;
        f.height = info.height;
        at = f.pixels + byteCount;
        return f;
    }

    void readColours(const StoredFrame& f, TavixColour* colours, int32_t& count) {
        TavixInfo info;
        m_source->read(f.record, &info, sizeof info);
        memcpy(colours, info.colours, sizeof info.colours);
        count = info.numcolours;
    }

    // The frame's stored rows, top first, `pitch` bytes apart: one read when
    // the rows lie back to back, else blocks of rows spread out.
    void readRows(const StoredFrame& f, uint8_t* pixels, ptrdiff_t pitch) {
        const size_t pixelBytes = f.bits / 8;
        const size_t rowBytes = static_cast<size_t>(f.width) * pixelBytes;
        const size_t height = static_cast<size_t>(f.height);
        if (static_cast<size_t>(pitch) == rowBytes) {
            m_source->read(f.pixels, pixels, rowBytes * height);
            if (pixelBytes == 4)
                wordsFromFile(reinterpret_cast<uint32_t*>(pixels), f.width * height);
            return;
        }
        const size_t perBlock = std::max<size_t>(1, kBlockBytes / rowBytes);
        Bytes block(std::min(perBlock, height) * rowBytes);
        for (size_t y = 0; y < height; y += perBlock) {
            const size_t rows = std::min(perBlock, height - y);
            m_source->read(f.pixels + y * rowBytes, block.data(), rows * rowBytes);
            for (size_t r = 0; r < rows; ++r) {
                uint8_t* to = pixels + static_cast<ptrdiff_t>(y + r) * pitch;
                memcpy(to, block.data() + r * rowBytes, rowBytes);
                if (pixelBytes == 4) wordsFromFile(reinterpret_cast<uint32_t*>(to), f.width);
            }
        }
    }

    HostPtr<Source> m_source;
    HostVector<StoredFrame> m_frames;
};

// Nothing in a frame's part of the file depends on another frame, so each
// frame a caller hands in is written at once, straight from its rows; the
// file starts with the frame count announced when it was created. Frames
// handed over as pictures are kept and written when the file is finished.
class TvxWriter : public SinkWriter {
  public:
    explicit TvxWriter(int frames) : m_announced(static_cast<uint32_t>(frames)) {}

    void add(const TavixInfo& info, std::span<const uint8_t> tail, Picture&& picture) override {
        if (m_streamed) {
            // The frames before went out already: this one follows at once.
            addDirect(m_stream, info, tail, viewOf(picture));
            return;
        }
        auto frame = makeHost<Pending>();
        head(info, tail, picture.indexed, frame->head);
        frame->picture = std::move(picture);
        m_frames.push_back(std::move(frame));
    }

    bool addDirect(intptr_t stream, const TavixInfo& info, std::span<const uint8_t> tail,
                   const FrameView& frame) override {
        if (!m_frames.empty()) return false; // keep the order of the frames
        BlockSink sink(stream);
        if (!m_streamed) start(sink, m_announced);
        m_streamed = true;
        m_stream = stream;
        Bytes record;
        head(info, tail, frame.indexed, record);
        sink.put(record.data(), record.size());
        pixels(frame, sink);
        sink.flush();
        return true;
    }

  private:
    struct Pending {
        Bytes head;
        Picture picture;
    };

    static void start(BlockSink& sink, uint32_t count) {
        ByteWriter out(sink.bytes());
        out.bytes("TVX1", 4);
        out.u32le(count);
    }

    // The frame's record size, record, tail, pixel bits and pixel bytes.
    void head(const TavixInfo& info, std::span<const uint8_t> tail, bool indexed, Bytes& to) {
        TavixInfo record = info;
        record.size = static_cast<int32_t>(sizeof record + tail.size());
        record.frame = static_cast<int32_t>(m_count++);
        record.bufferbpp = indexed ? 8 : 32;
        const size_t pixels = static_cast<size_t>(info.width) * static_cast<size_t>(info.height);
        ByteWriter out(to);
        out.u32le(static_cast<uint32_t>(record.size));
        out.bytes(&record, sizeof record);
        out.bytes(tail.data(), tail.size());
        out.u32le(indexed ? 8 : 32);
        out.u32le(static_cast<uint32_t>(indexed ? pixels : pixels * 4));
    }

    // Rows back to back; words as little-endian bytes, which on such a host
    // are the words as they lie in memory.
    static void pixels(const FrameView& p, BlockSink& sink) {
        const size_t width = static_cast<size_t>(p.width);
        const size_t height = static_cast<size_t>(p.height);
        const size_t rowBytes = width * (p.indexed ? 1 : 4);
        if (p.indexed || std::endian::native == std::endian::little) {
            if (static_cast<size_t>(p.pitch) == rowBytes) {
                sink.put(p.base, rowBytes * height);
                return;
            }
            for (size_t y = 0; y < height; ++y)
                sink.put(p.indices(y), rowBytes);
            return;
        }
        for (size_t y = 0; y < height; ++y) {
            ByteWriter words(sink.bytes());
            const uint32_t* row = p.argb(y);
            for (size_t x = 0; x < width; ++x)
                words.u32le(row[x]);
            sink.rowDone();
        }
    }

    void finishInto(BlockSink& sink) override {
        start(sink, static_cast<uint32_t>(m_frames.size()));
        for (const auto& frame : m_frames) {
            sink.put(frame->head.data(), frame->head.size());
            pixels(viewOf(frame->picture), sink);
        }
        sink.flush();
    }

    uint32_t m_announced;
    uint32_t m_count = 0;
    intptr_t m_stream = 0;
    HostVector<HostPtr<Pending>> m_frames;
};

void about(TavixAbout& about) {
    fillAbout(about, kTvxId, "tvx",
              kCapRead | kCapWrite | kCapPalette | kCapTrueColour | kCapMultiImage |
                  kCapStartColour | kCapAttributeBits,
              {".tvx"}, "Tavix Images");
    copyText(about.notes, sizeof about.notes, "Lossless; keeps every field of every frame");
}

DetectScore detect(std::span<const uint8_t> head, const char* path) {
    if (head.size() >= 4 && memcmp(head.data(), "TVX1", 4) == 0) return kByContent;
    return hasExtension(path, ".tvx") ? kByName : kNotMine;
}

HostPtr<FrameReader> open(Bytes&& file) {
    return makeHost<TvxReader>(memorySource(std::move(file)));
}

HostPtr<FrameReader> openSource(HostPtr<Source>&& source) {
    return makeHost<TvxReader>(std::move(source));
}

HostPtr<FrameWriter> create(int frames) {
    return makeHost<TvxWriter>(frames);
}

} // namespace

extern const Driver kTvxDriver = {"tvx", about, detect, open, create, openSource};

} // namespace tavix

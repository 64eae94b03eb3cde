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

#include <cstring>

namespace tavix {
namespace {

constexpr uint32_t kTvxId = 0x54565800; // "TVX"
constexpr uint32_t kMaxRecord = 16 << 20;

struct StoredFrame {
    size_t record; // offset of the record in the file
    uint32_t recordSize;
    uint32_t bits;
    size_t pixels; // offset of the pixels
};

class TvxReader : public FrameReader {
  public:
    explicit TvxReader(Bytes&& file) : m_file(std::move(file)) {
        ByteReader in(m_file.data(), m_file.size());
        if (memcmp(in.take(4), "TVX1", 4) != 0) fail("not a Tavix Images file");
        uint32_t count = in.u32le();
        if (count > in.remaining() / (kTavixInfoSize + 12))
            fail("frame count %u does not fit the file", count);
        for (uint32_t i = 0; i < count; ++i)
            m_frames.push_back(parseFrame(in, i));
    }

    int frameCount() const override { return static_cast<int>(m_frames.size()); }

    void describe(int frame, TavixInfo& info, Bytes& tail) override {
        const StoredFrame& f = m_frames[frame];
        memcpy(&info, &m_file[f.record], sizeof info);
        tail.assign(m_file.begin() + f.record + sizeof info,
                    m_file.begin() + f.record + f.recordSize);
    }

    void decode(int frame, Picture& out) override {
        const StoredFrame& f = m_frames[frame];
        TavixInfo info;
        memcpy(&info, &m_file[f.record], sizeof info);
        const uint8_t* pixels = &m_file[f.pixels];
        if (f.bits == 8) {
            out.makeIndexed(info.width, info.height);
            memcpy(out.indices.data(), pixels, out.indices.size());
            memcpy(out.palette, info.colours, sizeof out.palette);
            out.numcolours = info.numcolours;
        } else {
            out.makeTrueColour(info.width, info.height);
            for (size_t i = 0; i < out.argb.size(); ++i)
                out.argb[i] = pixels[4 * i] | pixels[4 * i + 1] << 8 | pixels[4 * i + 2] << 16 |
                              static_cast<uint32_t>(pixels[4 * i + 3]) << 24;
        }
    }

  private:
    StoredFrame parseFrame(ByteReader& in, uint32_t index) {
        StoredFrame f;
        f.recordSize = in.u32le();
        if (f.recordSize < static_cast<uint32_t>(kTavixInfoSize) || f.recordSize > kMaxRecord)
            fail("frame %u: bad record size %u", index, f.recordSize);
        f.record = in.pos();
        TavixInfo info;
        in.copy(&info, sizeof info);
        in.skip(f.recordSize - sizeof info);
        f.bits = in.u32le();
        uint32_t byteCount = in.u32le();
        size_t pixels = checkedPixelCount(info.width, info.height);
        if ((f.bits != 8 && f.bits != 32) || (info.bufferbpp <= 8) != (f.bits == 8))
            fail("frame %u: pixel depth %u does not match the record", index, f.bits);
        if (byteCount != pixels * (f.bits / 8)) fail("frame %u: pixel data size is wrong", index);
        f.pixels = in.pos();
        in.skip(byteCount);
        return f;
    }

    Bytes m_file;
    HostVector<StoredFrame> m_frames;
};

class TvxWriter : public FrameWriter {
  public:
    TvxWriter() : m_out(m_body) {}

    void add(const TavixInfo& info, std::span<const uint8_t> tail, Picture&& picture) override {
        TavixInfo record = info;
        record.size = static_cast<int32_t>(sizeof record + tail.size());
        record.frame = static_cast<int32_t>(m_count++);
        record.bufferbpp = picture.indexed ? 8 : 32;
        m_out.u32le(static_cast<uint32_t>(record.size));
        m_out.bytes(&record, sizeof record);
        m_out.bytes(tail.data(), tail.size());
        m_out.u32le(picture.indexed ? 8 : 32);
        if (picture.indexed) {
            m_out.u32le(static_cast<uint32_t>(picture.indices.size()));
            m_out.bytes(picture.indices.data(), picture.indices.size());
        } else {
            m_out.u32le(static_cast<uint32_t>(picture.argb.size() * 4));
            for (uint32_t word : picture.argb)
                m_out.u32le(word);
        }
    }

    void finish(Bytes& file) override {
        ByteWriter out(file);
        out.bytes("TVX1", 4);
        out.u32le(m_count);
        out.bytes(m_body.data(), m_body.size());
    }

  private:
    Bytes m_body;
    ByteWriter m_out;
    uint32_t m_count = 0;
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
    return makeHost<TvxReader>(std::move(file));
}

HostPtr<FrameWriter> create(int) {
    return makeHost<TvxWriter>();
}

} // namespace

extern const Driver kTvxDriver = {"tvx", about, detect, open, create};

} // namespace tavix

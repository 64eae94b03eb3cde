// Writing shape files of every variant. Frames are collected and laid out
// when the file is finished: mip frames fold back into their base record,
// a "!pal" image becomes the global palette, and whatever a frame's tail
// kept from the file it was read from (directory names, attachment order,
// records Zy does not interpret, stored pixels and packed streams) is
// written back when the frame still matches it, so an unedited file comes
// back byte for byte.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/Dxt.h"
#include "tavix/drivers/shape/RefPack.h"
#include "tavix/drivers/shape/Shape.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

namespace tavix::shape {
namespace {

constexpr size_t kPackedSlack = 65536;
constexpr char kDefaultDirectoryId[] = "GIMX";

struct Pending {
    TavixInfo info;
    Bytes tailBytes;
    TailData tail;
    Picture picture;
    bool sameVariant = false; // the tail came from a file of this variant
};

// One directory entry as it will be written.
struct Plan {
    int base = 0;
    bool paletteEntry = false;
    uint8_t id = 0;
    Layout layout = Layout::Idx8;
    HostVector<int> levels; // frames folded in as mip levels 1, 2 ...
};

// One record of an entry's chain, before the next offsets are known.
struct Piece {
    Bytes bytes;
};

struct DerivedFormat {
    int bpp;
    Channels bits;
    uint8_t id;
};

// The PC ids the mapping derives from depth and channel bits; a variant
// uses those it has.
constexpr DerivedFormat kDerived[] = {
    {32, {8, 8, 8, 8}, 0x7D}, {24, {0, 8, 8, 8}, 0x7F}, {16, {1, 5, 5, 5}, 0x7E},
    {16, {0, 5, 5, 5}, 0x7E}, {15, {0, 5, 5, 5}, 0x7E}, {15, {1, 5, 5, 5}, 0x7E},
    {16, {0, 5, 6, 5}, 0x78}, {16, {4, 4, 4, 4}, 0x6D},
};

bool sameChannels(const Channels& a, const TavixInfo& info) {
    return a.alpha == info.alphabits && a.red == info.redbits && a.green == info.greenbits &&
           a.blue == info.bluebits;
}

int maxIndex(const Picture& p) {
    int top = 0;
    for (uint8_t v : p.indices)
        top = std::max<int>(top, v);
    return top;
}

bool isPaletteName(const char* name) {
    return strcasecmp(name, "!pal") == 0;
}

bool sameLevel(const Picture& stored, const Picture& p) {
    if (stored.indexed != p.indexed || stored.width != p.width || stored.height != p.height)
        return false;
    if (stored.indexed) return stored.indices == p.indices;
    for (size_t i = 0; i < stored.argb.size(); ++i)
        if (stored.argb[i] != p.argbAt(i)) return false;
    return true;
}

class ShapeWriter : public FrameWriter {
  public:
    explicit ShapeWriter(const Variant& variant) : m_variant(variant) {}

    void add(const TavixInfo& info, std::span<const uint8_t> tail, Picture&& picture) override {
        auto pending = makeHost<Pending>();
        pending->info = info;
        pending->info.size = kTavixInfoSize;
        pending->tailBytes.assign(tail.begin(), tail.end());
        pending->tail = parseTail(info.formatid, pending->tailBytes);
        pending->sameVariant = pending->tail.variant == m_variant.formatid;
        pending->picture = std::move(picture);
        if (pending->picture.width > 65535 || pending->picture.height > 65535)
            fail("a %dx%d frame is larger than a shape record can hold (65535)",
                 pending->picture.width, pending->picture.height);
        m_frames.push_back(std::move(pending));
    }

    void finish(Bytes& file) override;
    void finishTo(intptr_t stream) override;

  private:
    bool big() const { return m_variant.bigEndian; }
    Pending& frame(int i) { return *m_frames[i]; }
    uint8_t chooseRecord(const Pending& f);
    bool isPaletteEntry(const Pending& f) const;
    bool build(Bytes& head, HostVector<Bytes>& entries);
    void plan();
    bool folds(const Plan& plan, const Pending& f, uint8_t id) const;
    void paletteColours(const Pending& f, TavixColour out[256], int& count) const;
    void globalPalette();
    void writeEntry(const Plan& plan, Bytes& out);
    void bitmapRecord(const Plan& plan, Piece& piece);
    Bytes pixels(const Plan& plan);
    Bytes keptPixels(const Pending& f, Layout layout) const;
    bool localPalette(const Plan& plan, Piece& piece);
    void paletteRecord(const Pending& f, const TavixColour* colours, int count, uint8_t preferred,
                       Piece& piece);
    void attachments(const Pending& f, bool withPalette, Piece& palette, HostVector<Piece>& pieces);
    void directoryName(const Pending& f, uint8_t out[4]) const;
    bool nameUnchanged(const Pending& f) const;
    int32_t clamp(int32_t value, int32_t top, bool& reported, const char* what);

    const Variant& m_variant;
    HostVector<HostPtr<Pending>> m_frames;
    HostVector<Plan> m_plans;
    TavixColour m_global[256] = {};
    int m_globalCount = 0;
    bool m_centreReported = false;
    bool m_positionReported = false;
    bool m_crossReported = false;
};

uint8_t ShapeWriter::chooseRecord(const Pending& f) {
    const TavixInfo& info = f.info;
    const Picture& p = f.picture;
    if (info.subtype > 0 && info.subtype < 0x80) {
        const BitmapFormat* format = findBitmap(m_variant, static_cast<uint8_t>(info.subtype));
        if (format && (!isIndexed(format->layout) || p.indexed)) {
            if (!isFourBit(format->layout) || maxIndex(p) < 16) return format->id;
            report("tavix: \"%s\" uses more than 16 colours; written as 8-bit\n", info.framename);
        }
    }
    if (p.indexed) return m_variant.indexed8;
    for (const DerivedFormat& d : kDerived)
        if (d.bpp == info.bpp && sameChannels(d.bits, info) && findBitmap(m_variant, d.id))
            return d.id;
    return m_variant.trueColour;
}

bool ShapeWriter::isPaletteEntry(const Pending& f) const {
    if (!f.picture.indexed || f.picture.height != 1) return false;
    const bool paletteId = f.info.subtype > 0 && f.info.subtype < 0x80 &&
                           findPalette(m_variant, static_cast<uint8_t>(f.info.subtype));
    return paletteId || isPaletteName(f.info.framename);
}

bool ShapeWriter::folds(const Plan& plan, const Pending& f, uint8_t id) const {
    if (plan.paletteEntry || plan.id != id || !(f.info.attributes & kAttrMipLevel)) return false;
    const int level = static_cast<int>(plan.levels.size()) + 1;
    if (level > 15) return false;
    const Pending& base = *m_frames[plan.base];
    const Picture& b = base.picture;
    if (f.picture.width != levelSide(b.width, level) ||
        f.picture.height != levelSide(b.height, level))
        return false;
    if (f.picture.indexed != b.indexed) return false;
    // A record has one palette: an indexed level folds only if it shares it.
    return !b.indexed || memcmp(f.picture.palette, b.palette, sizeof b.palette) == 0;
}

void ShapeWriter::plan() {
    for (int i = 0; i < static_cast<int>(m_frames.size()); ++i) {
        Pending& f = frame(i);
        if (isPaletteEntry(f)) {
            if (f.picture.width > 256)
                fail("palette image \"%s\" has more than 256 colours", f.info.framename);
            Plan p;
            p.base = i;
            p.paletteEntry = true;
            m_plans.push_back(std::move(p));
            continue;
        }
        const uint8_t id = chooseRecord(f);
        if (!m_plans.empty() && folds(m_plans.back(), f, id)) {
            m_plans.back().levels.push_back(i);
            continue;
        }
        Plan p;
        p.base = i;
        p.id = id;
        p.layout = findBitmap(m_variant, id)->layout;
        m_plans.push_back(std::move(p));
    }
}

// The colours a palette image stands for: pixel x of its row shows colour x.
void ShapeWriter::paletteColours(const Pending& f, TavixColour out[256], int& count) const {
    count = f.picture.width;
    for (int x = 0; x < count; ++x)
        out[x] = f.picture.palette[f.picture.indices[x]];
}

void ShapeWriter::globalPalette() {
    for (const Plan& p : m_plans)
        if (p.paletteEntry && isPaletteName(frame(p.base).info.framename)) {
            paletteColours(frame(p.base), m_global, m_globalCount);
            return;
        }
}

bool ShapeWriter::nameUnchanged(const Pending& f) const {
    if (!f.tail.hasEntry || f.tail.level != 0) return false;
    const ByteSpan name = f.tail.originalName;
    return strlen(f.info.framename) == name.size() &&
           memcmp(f.info.framename, name.data(), name.size()) == 0;
}

void ShapeWriter::directoryName(const Pending& f, uint8_t out[4]) const {
    if (nameUnchanged(f)) {
        memcpy(out, f.tail.dirname, 4);
        return;
    }
    memset(out, 0, 4);
    memcpy(out, f.info.framename, strnlen(f.info.framename, 4));
}

int32_t ShapeWriter::clamp(int32_t value, int32_t top, bool& reported, const char* what) {
    if (value >= 0 && value <= top) return value;
    if (!reported) report("tavix: %s outside 0..%d are clamped\n", what, top);
    reported = true;
    return value < 0 ? 0 : top;
}

// The stored pixels a frame's tail kept, in the layout this plan writes:
// as they are, or moved between DXT1 blocks and CMPR tiles. Empty when
// there are none or they are of another layout.
Bytes ShapeWriter::keptPixels(const Pending& f, Layout layout) const {
    const TailData& t = f.tail;
    const Variant* from = variantOf(t.variant);
    const BitmapFormat* format = from ? findBitmap(*from, t.recordId & 0x7F) : nullptr;
    if (!format || t.pixels.empty()) return {};
    const int32_t w = f.picture.width, h = f.picture.height;
    if (format->layout == Layout::Dxt1 && layout == Layout::GcCmpr &&
        t.pixels.size() == levelBytes(format->layout, w, h))
        return dxt::dxt1ToCmpr(t.pixels.data(), w, h);
    if (format->layout == Layout::GcCmpr && layout == Layout::Dxt1 &&
        t.pixels.size() == levelBytes(format->layout, w, h))
        return dxt::cmprToDxt1(t.pixels.data(), w, h);
    return Bytes(t.pixels.begin(), t.pixels.end());
}

// Each level is either the stored pixels a tail kept (when they decode,
// the way this file will be read, to exactly the frame's pixels: that
// keeps block-compressed levels from losing quality on every save) or
// freshly encoded.
Bytes ShapeWriter::pixels(const Plan& plan) {
    Bytes raw;
    const int quality = frame(plan.base).info.quality;
    for (size_t level = 0; level <= plan.levels.size(); ++level) {
        const Pending& f = frame(level ? plan.levels[level - 1] : plan.base);
        const size_t size = levelBytes(plan.layout, f.picture.width, f.picture.height);
        Bytes kept = keptPixels(f, plan.layout);
        bool reused = false;
        if (kept.size() == size) {
            Picture stored;
            decodeLevel(m_variant, plan.layout, kept.data(), f.picture.width, f.picture.height,
                        stored);
            if (sameLevel(stored, f.picture)) {
                raw.insert(raw.end(), kept.begin(), kept.end());
                reused = true;
            }
        }
        if (!reused)
            encodeLevel(m_variant, plan.layout, f.picture, quality > 0 ? quality : 100, raw);
    }
    return raw;
}

void ShapeWriter::bitmapRecord(const Plan& plan, Piece& piece) {
    const Pending& f = frame(plan.base);
    const TavixInfo& info = f.info;
    const bool packed = info.packed != 0;
    Bytes raw = pixels(plan);
    Bytes& out = piece.bytes;
    if (!packed) out.reserve(16 + raw.size());
    out.push_back(static_cast<uint8_t>(plan.id | (packed ? kRecPacked : 0)));
    put24(out, 0, big());
    put16(out, static_cast<uint32_t>(f.picture.width), big());
    put16(out, static_cast<uint32_t>(f.picture.height), big());
    put16(out, static_cast<uint32_t>(clamp(info.centerx, 65535, m_centreReported, "centre points")),
          big());
    put16(out, static_cast<uint32_t>(clamp(info.centery, 65535, m_centreReported, "centre points")),
          big());
    const uint32_t flags =
        f.sameVariant && !m_variant.flagsMeanSwizzled ? (f.tail.flagNibble & 0xF000) : 0;
    put16(out, flags | clamp(info.defaultx, 4095, m_positionReported, "positions"), big());
    put16(out,
          static_cast<uint32_t>(plan.levels.size()) << 12 |
              clamp(info.defaulty, 4095, m_positionReported, "positions"),
          big());
    if (!packed) {
        out.insert(out.end(), raw.begin(), raw.end());
        return;
    }
    // The stream as read is kept when it still unpacks to exactly these
    // pixels: our compressor would find other (not worse) matches.
    const ByteSpan kept = f.tail.level == 0 ? f.tail.packed : ByteSpan{};
    if (!kept.empty()) {
        try {
            refpack::Decoded d = refpack::decode(kept, raw.size() + kPackedSlack);
            if (d.bytes == raw) {
                out.insert(out.end(), kept.begin(), kept.end());
                return;
            }
        } catch (const FormatError&) {
            // not the stream it claims to be: compress afresh
        }
    }
    Bytes stream = refpack::encode(raw);
    out.insert(out.end(), stream.begin(), stream.end());
}

void ShapeWriter::paletteRecord(const Pending& f, const TavixColour* colours, int count,
                                uint8_t preferred, Piece& piece) {
    Bytes& out = piece.bytes;
    if (f.tail.palette.size() >= 16) {
        const ByteSpan raw = f.tail.palette;
        const PaletteFormat* format = findPalette(m_variant, raw[0]);
        const int stored = static_cast<int>(get16(raw.data() + 4, big()));
        if (format && stored == count &&
            raw.size() == 16 + entryBytes(format->layoutFor(count)) * count) {
            TavixColour back[256];
            decodePalette(m_variant, format->layoutFor(count), raw.data() + 16, count, back);
            if (memcmp(back, colours, sizeof(TavixColour) * count) == 0) {
                out.assign(raw.begin(), raw.end());
                return;
            }
        }
        // The colours changed: keep the record type when it still fits them.
        if (format && !preferred &&
            paletteFits(m_variant, format->layoutFor(count), colours, count))
            preferred = format->id;
    }
    if (!preferred) {
        bool alpha = false;
        for (int i = 0; i < count; ++i)
            alpha |= colours[i].alpha != 255;
        preferred = alpha ? m_variant.paletteAlpha : m_variant.paletteOpaque;
    }
    const PaletteFormat* format = findPalette(m_variant, preferred);
    out.push_back(preferred);
    put24(out, 0, big());
    for (uint32_t v : {static_cast<uint32_t>(count), 1u, static_cast<uint32_t>(count), 0u, 0u, 0u})
        put16(out, v, big());
    encodePalette(m_variant, format->layoutFor(count), colours, count, out);
}

// The palette record after an indexed bitmap, unless the bitmap can use
// the global one. False when none is needed.
bool ShapeWriter::localPalette(const Plan& plan, Piece& piece) {
    const Pending& f = frame(plan.base);
    if (!isIndexed(plan.layout)) return false;
    int count = std::max(f.picture.numcolours, maxIndex(f.picture) + 1);
    if (m_variant.fullPalettes) count = isFourBit(plan.layout) ? 16 : 256;
    count = std::min(count, 256);
    const bool hadLocal = f.tail.hasEntry && f.tail.layout.size() &&
                          std::find(f.tail.layout.begin(), f.tail.layout.end(),
                                    tail::kSlotPalette) != f.tail.layout.end();
    const bool global = m_globalCount == count &&
                        memcmp(m_global, f.picture.palette, sizeof(TavixColour) * count) == 0;
    if (global && !hadLocal) return false;
    const uint8_t preferred = isFourBit(plan.layout) ? m_variant.palette16 : 0;
    paletteRecord(f, f.picture.palette, count, preferred, piece);
    return true;
}

void ShapeWriter::attachments(const Pending& f, bool withPalette, Piece& palette,
                              HostVector<Piece>& pieces) {
    const TavixInfo& info = f.info;
    const bool family = f.tail.hasEntry && f.tail.level == 0;
    const size_t nameLength = strnlen(info.framename, sizeof info.framename);
    const bool longName =
        nameLength > 4 || (nameUnchanged(f) && (f.tail.entryFlags & tail::kEntryLongName));
    const size_t commentLength = strnlen(info.comment, sizeof info.comment - 1);
    const int hotspots = std::clamp(info.numhotspots, 0, kTavixMaxHotSpots);
    const HostVector<ByteSpan>* kept = family && f.sameVariant ? &f.tail.kept : nullptr;
    if (family && !f.sameVariant && !f.tail.kept.empty() && !m_crossReported) {
        report("tavix: attachments Zy does not interpret stay behind when a frame moves to another "
               "platform\n");
        m_crossReported = true;
    }
    bool done[6] = {};
    size_t nextKept = 0;
    auto emit = [&](uint8_t slot) {
        Piece piece;
        Bytes& out = piece.bytes;
        switch (slot) {
        case tail::kSlotPalette:
            if (!withPalette || done[slot]) return;
            pieces.push_back(std::move(palette));
            done[slot] = true;
            return;
        case tail::kSlotLongName:
            if (!longName || done[slot]) return;
            out.push_back(kRecLongName);
            put24(out, 0, big());
            out.insert(out.end(), info.framename, info.framename + nameLength);
            out.push_back(0);
            break;
        case tail::kSlotText:
            if (!commentLength || done[slot]) return;
            out.push_back(kRecText);
            put24(out, 0, big());
            put32(out, static_cast<uint32_t>(commentLength), big());
            out.insert(out.end(), info.comment, info.comment + commentLength);
            break;
        case tail::kSlotHotSpots:
            if (!hotspots || done[slot]) return;
            out.push_back(kRecHotSpots);
            put24(out, 0, big());
            put32(out, static_cast<uint32_t>(hotspots), big());
            for (int i = 0; i < hotspots; ++i) {
                put32(out, static_cast<uint32_t>(info.hotspots[i].x), big());
                put32(out, static_cast<uint32_t>(info.hotspots[i].y), big());
            }
            break;
        case tail::kSlotKept:
            if (!kept || nextKept >= kept->size()) return;
            out.assign((*kept)[nextKept].begin(), (*kept)[nextKept].end());
            ++nextKept;
            pieces.push_back(std::move(piece));
            return;
        default:
            return;
        }
        done[slot] = true;
        pieces.push_back(std::move(piece));
    };
    if (family)
        for (uint8_t slot : f.tail.layout)
            emit(slot);
    for (uint8_t slot :
         {tail::kSlotPalette, tail::kSlotLongName, tail::kSlotText, tail::kSlotHotSpots})
        emit(slot);
    while (kept && nextKept < kept->size())
        emit(tail::kSlotKept);
}

void ShapeWriter::writeEntry(const Plan& plan, Bytes& out) {
    const Pending& f = frame(plan.base);
    HostVector<Piece> pieces(1);
    Piece palette;
    bool withPalette = false;
    if (plan.paletteEntry) {
        TavixColour colours[256];
        int count = 0;
        paletteColours(f, colours, count);
        const bool asIs = f.info.subtype > 0 && f.info.subtype < 0x80 &&
                          findPalette(m_variant, static_cast<uint8_t>(f.info.subtype));
        paletteRecord(f, colours, count, asIs ? static_cast<uint8_t>(f.info.subtype) : 0,
                      pieces[0]);
    } else {
        bitmapRecord(plan, pieces[0]);
        withPalette = localPalette(plan, palette);
    }
    attachments(f, withPalette, palette, pieces);
    const bool nextIsSize =
        f.tail.hasEntry && f.tail.level == 0 && (f.tail.entryFlags & tail::kEntryNextIsSize);
    for (size_t i = 0; i < pieces.size(); ++i) {
        Bytes& b = pieces[i].bytes;
        if (b.size() < 4) fail("a kept record is too short to write");
        const size_t padded = (b.size() + 15) & ~size_t{15};
        const bool last = i + 1 == pieces.size();
        const size_t next = last && !nextIsSize ? 0 : padded;
        if (next > 0xFFFFFF)
            fail("\"%s\": a record of %zu bytes leaves no room for the records after it (next "
                 "offsets have "
                 "24 bits); drop its name, comment and hot spots or make it smaller",
                 f.info.framename, padded);
        set24(&b[1], static_cast<uint32_t>(next), big());
        const size_t size = b.size();
        if (out.empty())
            out = std::move(b); // the bitmap record, usually nearly all of the entry
        else
            out.insert(out.end(), b.begin(), b.end());
        out.resize(out.size() + (padded - size), 0);
    }
}

// The file's header and directory, and each entry's records, apart: the
// entries can then go to the stream one by one without ever being copied
// into one block. Returns whether the whole file is to be packed.
bool ShapeWriter::build(Bytes& head, HostVector<Bytes>& entries) {
    plan();
    globalPalette();
    const Pending* source = nullptr;
    for (const auto& f : m_frames)
        if (f->sameVariant && f->tail.hasFile) {
            source = f.get();
            break;
        }
    const Pending* family = nullptr;
    for (const auto& f : m_frames)
        if (f->tail.hasFile) {
            family = f.get();
            break;
        }
    const size_t count = m_plans.size();
    const size_t dirEnd = 16 + 8 * count;
    const size_t firstRecord = (dirEnd + 15) & ~size_t{15};
    Bytes& file = head;
    file.clear();
    const bool keepMagic = source && hasMagic(m_variant, ByteSpan(source->tail.magic, 4));
    file.insert(
        file.end(),
        keepMagic ? source->tail.magic : reinterpret_cast<const uint8_t*>(m_variant.magic),
        (keepMagic ? source->tail.magic : reinterpret_cast<const uint8_t*>(m_variant.magic)) + 4);
    put32(file, 0, big());
    put32(file, static_cast<uint32_t>(count), big());
    const uint8_t* dirid =
        family ? family->tail.dirid : reinterpret_cast<const uint8_t*>(kDefaultDirectoryId);
    file.insert(file.end(), dirid, dirid + 4);
    file.resize(firstRecord, 0);
    if (source && source->tail.dirPad.size() == firstRecord - dirEnd)
        std::copy(source->tail.dirPad.begin(), source->tail.dirPad.end(), file.begin() + dirEnd);
    entries.clear();
    entries.resize(count);
    uint64_t total = file.size();
    for (size_t i = 0; i < count; ++i) {
        const Pending& f = frame(m_plans[i].base);
        uint8_t name[4];
        directoryName(f, name);
        memcpy(&file[16 + 8 * i], name, 4);
        if (total > 0xFFFFFFFFu) fail("the file would exceed 4 GiB");
        set32(&file[16 + 8 * i + 4], static_cast<uint32_t>(total), big());
        writeEntry(m_plans[i], entries[i]);
        total += entries[i].size();
    }
    if (total > 0xFFFFFFFFu) fail("the file would exceed 4 GiB");
    set32(&file[4], static_cast<uint32_t>(total), big());
    return source && (source->tail.fileFlags & tail::kFileWholePacked);
}

// The header followed by every entry, each entry given back once copied.
void assemble(Bytes& file, HostVector<Bytes>& entries) {
    size_t total = file.size();
    for (const Bytes& entry : entries)
        total += entry.size();
    file.reserve(total);
    for (Bytes& entry : entries) {
        file.insert(file.end(), entry.begin(), entry.end());
        Bytes().swap(entry);
    }
}

void ShapeWriter::finish(Bytes& file) {
    HostVector<Bytes> entries;
    const bool wholePacked = build(file, entries);
    assemble(file, entries);
    if (wholePacked) file = refpack::encode(file);
}

void ShapeWriter::finishTo(intptr_t stream) {
    Bytes head;
    HostVector<Bytes> entries;
    if (build(head, entries)) {
        // A file packed as a whole is one stream over all of its bytes.
        assemble(head, entries);
        writeWhole(stream, refpack::encode(head));
        return;
    }
    writeWhole(stream, head);
    for (const Bytes& entry : entries)
        writeWhole(stream, entry);
}

} // namespace

HostPtr<FrameWriter> createShape(const Variant& variant) {
    return makeHost<ShapeWriter>(variant);
}

} // namespace tavix::shape

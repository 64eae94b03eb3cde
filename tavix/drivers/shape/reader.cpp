// Reading shape files of every variant. The directory and each entry's
// record chain are parsed when the file is opened, with every offset and
// size checked against the file; pixels are decoded when a frame is read.
// An entry Zy cannot decode becomes a frame that fails on its own, so the
// rest of the file still reads.

#include "tavix/core/Errors.h"
#include "tavix/drivers/shape/RefPack.h"
#include "tavix/drivers/shape/Shape.h"

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <strings.h>

namespace tavix::shape {
namespace {

constexpr int kMaxChain = 4096;              // records in one entry
constexpr size_t kMaxWholeFile = 256u << 20; // unpacked size of a whole-file RefPack
constexpr size_t kMaxKept = 8u << 20;        // a record kept byte for byte
constexpr size_t kPackedSlack = 65536;       // a packed record may unpack a little long
constexpr int kMaxReports = 16;
constexpr size_t kMaxNameScan = 4096; // bytes searched for a name's terminator

enum class Kind : uint8_t { Bitmap, Palette, Broken };
enum class PaletteSource : uint8_t { None, Local, Global, Grey };

struct Record {
    size_t pos;
    size_t end; // the next record, or where this one can reach at most
    uint8_t id;
    uint8_t slot; // tail::kSlot*
};

// Kept small: a hostile directory can hold a hundred thousand entries.
struct Entry {
    uint8_t dirname[4] = {};
    size_t offset = 0;
    Kind kind = Kind::Broken;
    Bytes problem;  // the message of a broken entry, terminated
    uint8_t id = 0; // the first record's id byte, packed bit included
    const BitmapFormat* format = nullptr;
    PaletteLayout paletteLayout = PaletteLayout::Argb8888;
    int32_t width = 1, height = 1, centerx = 0, centery = 0, posx = 0, posy = 0;
    uint16_t flagNibble = 0;
    int mips = 0;
    size_t payload = 0; // unpacked pixel bytes of all levels
    bool nextIsSize = false;
    HostVector<Record> chain; // the first record included
    int palette = -1;         // chain index of the local palette
    PaletteSource source = PaletteSource::None;
    int paletteCount = 0;
    size_t namePos = 0, nameLength = 0; // the long name, when there is one
    size_t textPos = 0, textLength = 0;
    size_t hotPos = 0, hotCount = 0;
    bool longName = false;
};

struct FrameRef {
    int entry;
    int level;
};

void trimmedName(const uint8_t raw[4], char out[5]) {
    int n = 4;
    while (n > 0 && (raw[n - 1] == 0 || raw[n - 1] == ' '))
        --n;
    for (int i = 0; i < n; ++i)
        out[i] = raw[i] ? static_cast<char>(raw[i]) : ' ';
    out[n] = 0;
}

bool isGlobalPaletteName(const char* name) {
    return strcasecmp(name, "!pal") == 0;
}

class ShapeReader : public FrameReader {
  public:
    ShapeReader(const Variant& variant, Bytes&& file)
        : m_variant(variant), m_file(std::move(file)) {
        if (!hasMagic(variant, m_file) && refpack::looksPacked(m_file)) {
            m_file = refpack::decode(m_file, kMaxWholeFile).bytes;
            m_wholePacked = true;
        }
        if (m_file.size() < 16 || !hasMagic(variant, m_file))
            fail("not a %s (no %s header)", variant.description, variant.magic);
        readDirectory();
        // Honest chains never share records, so every record is visited
        // once; chains that overlap (or a directory that names one record
        // many times) run out of this budget instead of taking forever.
        m_chainBudget = m_file.size() / 4 + 64;
        m_byteBudget = 2 * m_file.size() + 65536;
        for (size_t i = 0; i < m_entries.size(); ++i)
            parseEntry(static_cast<int>(i));
        findGlobalPalette();
        for (size_t i = 0; i < m_entries.size(); ++i)
            resolvePalette(static_cast<int>(i));
        if (m_reports > kMaxReports)
            report("tavix: ... and %d more problems in this file\n", m_reports - kMaxReports);
        for (size_t i = 0; i < m_entries.size(); ++i) {
            m_frames.push_back({static_cast<int>(i), 0});
            if (m_entries[i].kind == Kind::Bitmap)
                for (int level = 1; level <= m_entries[i].mips; ++level)
                    m_frames.push_back({static_cast<int>(i), level});
        }
    }

    int frameCount() const override { return static_cast<int>(m_frames.size()); }

    void describe(int frame, TavixInfo& info, Bytes& tail) override;
    void decode(int frame, Picture& out) override;
    bool decodeInto(int frame, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) override;

  private:
    bool big() const { return m_variant.bigEndian; }
    uint32_t u16at(size_t at) const { return get16(&m_file[at], big()); }
    uint32_t u24at(size_t at) const { return get24(&m_file[at], big()); }
    uint32_t u32at(size_t at) const { return get32(&m_file[at], big()); }

    void problem(const char* format, ...) __attribute__((format(printf, 2, 3)));
    const char* nameOf(const Entry& e, char* out, size_t capacity) const;
    void readDirectory();
    void parseEntry(int index);
    void walkChain(Entry& e);
    void classifyFirst(Entry& e);
    void classifyAttachment(Entry& e, size_t index, bool wantsPalette);
    void findGlobalPalette();
    void resolvePalette(int index);
    size_t boundaryAfter(size_t pos) const;
    bool isEntryStart(size_t pos) const;
    ByteSpan payloadOf(int entry, size_t* consumed = nullptr);
    size_t levelOffset(const Entry& e, int level) const;
    void paletteOf(const Entry& e, TavixColour out[256], int& count) const;
    void decodeBitmapLevel(int entry, int level, Picture& out);
    void buildTail(const Entry& e, int level, const TavixInfo& info, Bytes& tail);
    void keepStoredPixels(const Entry& e, int level, const TavixInfo& info, TailBuilder& t);

    const Variant& m_variant;
    Bytes m_file;
    bool m_wholePacked = false;
    size_t m_dirEnd = 0;
    size_t m_firstRecord = 0;
    HostVector<Entry> m_entries;
    HostVector<size_t> m_starts; // sorted entry offsets
    HostVector<FrameRef> m_frames;
    int m_global = -1;
    int m_reports = 0;
    size_t m_chainBudget = 0;
    size_t m_byteBudget = 0; // record bytes the chains may cover, likewise
    int m_cacheEntry = -1;
    Bytes m_cache;
    size_t m_cacheConsumed = 0;
};

void ShapeReader::problem(const char* format, ...) {
    if (++m_reports > kMaxReports) return;
    char text[400];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    report("tavix: %s\n", text);
}

void ShapeReader::readDirectory() {
    const size_t size = m_file.size();
    const uint32_t declared = u32at(4);
    if (declared != size && !m_wholePacked)
        problem("the header gives the file size as %u bytes, the file has %zu", declared, size);
    const uint32_t count = u32at(8);
    if (count > (size - 16) / 8) fail("the directory of %u entries does not fit the file", count);
    m_dirEnd = 16 + size_t{8} * count;
    m_firstRecord = size;
    m_entries.resize(count);
    for (uint32_t i = 0; i < count; ++i) {
        Entry& e = m_entries[i];
        memcpy(e.dirname, &m_file[16 + 8 * i], 4);
        e.offset = u32at(16 + 8 * i + 4);
        if (e.offset >= m_dirEnd && e.offset < size) {
            m_starts.push_back(e.offset);
            m_firstRecord = std::min(m_firstRecord, e.offset);
        }
    }
    std::sort(m_starts.begin(), m_starts.end());
    m_starts.erase(std::unique(m_starts.begin(), m_starts.end()), m_starts.end());
}

size_t ShapeReader::boundaryAfter(size_t pos) const {
    auto it = std::upper_bound(m_starts.begin(), m_starts.end(), pos);
    return it == m_starts.end() ? m_file.size() : *it;
}

bool ShapeReader::isEntryStart(size_t pos) const {
    return std::binary_search(m_starts.begin(), m_starts.end(), pos);
}

const char* ShapeReader::nameOf(const Entry& e, char* out, size_t capacity) const {
    if (e.longName) {
        const size_t n = std::min(e.nameLength, capacity - 1);
        memcpy(out, &m_file[e.namePos], n);
        out[n] = 0;
    } else {
        char raw[5];
        trimmedName(e.dirname, raw);
        copyText(out, capacity, raw);
    }
    return out;
}

void ShapeReader::parseEntry(int index) {
    Entry& e = m_entries[index];
    try {
        walkChain(e);
        const BitmapFormat* format = findBitmap(m_variant, e.chain[0].id & 0x7F);
        for (size_t i = 1; i < e.chain.size(); ++i)
            classifyAttachment(e, i, format && isIndexed(format->layout));
        classifyFirst(e);
    } catch (const FormatError& error) {
        e.kind = Kind::Broken;
        char name[64];
        char text[sizeof error.message + 96];
        const int n = snprintf(text, sizeof text, "entry %d \"%s\": %s", index,
                               nameOf(e, name, sizeof name), error.message);
        e.problem.assign(text, text + std::min<size_t>(n, sizeof text - 1) + 1);
        problem("%s; the frame cannot be read", text);
    }
}

void ShapeReader::walkChain(Entry& e) {
    const size_t size = m_file.size();
    if (e.offset < m_dirEnd || e.offset >= size)
        fail("its offset %zu lies outside the records (%zu to %zu)", e.offset, m_dirEnd, size);
    size_t pos = e.offset;
    for (int n = 0;; ++n) {
        if (n == kMaxChain) fail("more than %d records are chained", kMaxChain);
        if (size - pos < 4) fail("a record at %zu is cut short by the end of the file", pos);
        const uint32_t next = u24at(pos + 1);
        if (next != 0 && next < 4)
            fail("the record at %zu points %u bytes on, inside itself", pos, next);
        if (next > size - pos)
            fail("the record at %zu points %u bytes on, past the end of the file", pos, next);
        const size_t end = next ? pos + next : boundaryAfter(pos);
        if (m_chainBudget == 0 || m_byteBudget < end - pos)
            fail("its records overlap other entries' records");
        --m_chainBudget;
        m_byteBudget -= end - pos;
        e.chain.push_back({pos, end, m_file[pos], 0});
        if (next == 0) return;
        pos += next;
        // Some writers give the last record's block size instead of 0: the
        // chain then lands on the next entry (or the end) and stops there.
        if (pos == size || isEntryStart(pos)) {
            e.nextIsSize = true;
            return;
        }
    }
}

void ShapeReader::classifyFirst(Entry& e) {
    const Record& first = e.chain[0];
    const uint8_t id = first.id;
    const uint8_t type = id & 0x7F;
    e.id = id;
    if (first.end - first.pos < 16) fail("record 0x%02X is shorter than its 16-byte header", id);
    const size_t h = first.pos;
    e.width = static_cast<int32_t>(u16at(h + 4));
    e.height = static_cast<int32_t>(u16at(h + 6));
    if (const BitmapFormat* format = findBitmap(m_variant, type)) {
        const uint32_t x = u16at(h + 12), y = u16at(h + 14);
        e.centerx = static_cast<int32_t>(u16at(h + 8));
        e.centery = static_cast<int32_t>(u16at(h + 10));
        e.posx = static_cast<int32_t>(x & 0xFFF);
        e.posy = static_cast<int32_t>(y & 0xFFF);
        e.flagNibble = static_cast<uint16_t>(x & 0xF000);
        e.mips = static_cast<int>(y >> 12);
        e.format = format;
        if (e.width == 0 || e.height == 0)
            fail("bitmap record 0x%02X is %dx%d", id, e.width, e.height);
        if (m_variant.flagsMeanSwizzled && e.flagNibble)
            fail("record 0x%02X is marked swizzled (flags 0x%X at +0C); Zy reads only unswizzled "
                 "PS2 pixels",
                 id, e.flagNibble >> 12);
        e.payload = payloadBytes(format->layout, e.width, e.height, e.mips);
        const size_t room = first.end - h - 16;
        if (id & kRecPacked) {
            if (room < 5) fail("packed record 0x%02X has no room for its RefPack stream", id);
        } else if (e.payload > room) {
            fail("record 0x%02X needs %zu bytes of pixels, %zu are there", id, e.payload, room);
        }
        e.kind = Kind::Bitmap;
        return;
    }
    if (const PaletteFormat* format = findPalette(m_variant, type)) {
        if (id & kRecPacked) fail("palette record 0x%02X is packed, which Zy does not read", id);
        if (e.width < 1 || e.width > 256)
            fail("palette record 0x%02X holds %d colours", id, e.width);
        e.paletteLayout = format->layoutFor(e.width);
        if (entryBytes(e.paletteLayout) * e.width > first.end - h - 16)
            fail("palette record 0x%02X is cut short", id);
        e.height = 1;
        e.paletteCount = e.width;
        e.kind = Kind::Palette;
        return;
    }
    if (const RefusedFormat* refused = findRefused(m_variant, type))
        fail("record 0x%02X (%s) is a documented layout Zy cannot decode", id, refused->name);
    fail("record 0x%02X is not a record type Zy knows", id);
}

void ShapeReader::classifyAttachment(Entry& e, size_t index, bool wantsPalette) {
    Record& r = e.chain[index];
    const size_t room = r.end - r.pos;
    const uint8_t type = r.id;
    char name[64];
    r.slot = tail::kSlotKept;
    auto bad = [&](const char* what) {
        problem("entry \"%s\": %s record 0x%02X at %zu is malformed; kept as it is",
                nameOf(e, name, sizeof name), what, type, r.pos);
    };
    if (wantsPalette && findPalette(m_variant, type) && e.palette < 0) {
        const int count = room >= 16 ? static_cast<int>(u16at(r.pos + 4)) : 0;
        if (count < 1 || count > 256 ||
            entryBytes(findPalette(m_variant, type)->layoutFor(count)) * count > room - 16)
            return bad("palette");
        e.palette = static_cast<int>(index);
        r.slot = tail::kSlotPalette;
    } else if (type == kRecLongName && !e.longName) {
        const char* text = reinterpret_cast<const char*>(&m_file[r.pos + 4]);
        const size_t n = strnlen(text, std::min(room - 4, kMaxNameScan));
        if (n == 0) return bad("long name");
        e.namePos = r.pos + 4;
        e.nameLength = n;
        e.longName = true;
        r.slot = tail::kSlotLongName;
    } else if (type == kRecText && !e.textPos) {
        const size_t length = room >= 8 ? u32at(r.pos + 4) : SIZE_MAX;
        if (length == 0 || length > room - 8) return bad("text");
        const size_t n = strnlen(reinterpret_cast<const char*>(&m_file[r.pos + 8]), length);
        if (n > 1023)
            problem("entry \"%s\": the comment is cut to 1023 characters",
                    nameOf(e, name, sizeof name));
        e.textPos = r.pos + 8;
        e.textLength = std::min<size_t>(n, 1023);
        r.slot = tail::kSlotText;
    } else if (type == kRecHotSpots && !e.hotPos) {
        const size_t count = room >= 8 ? u32at(r.pos + 4) : SIZE_MAX;
        if (count == 0 || count > (room - 8) / 8) return bad("hot spot");
        if (count > kTavixMaxHotSpots)
            problem("entry \"%s\": only the first %d of %zu hot spots are kept",
                    nameOf(e, name, sizeof name), kTavixMaxHotSpots, count);
        e.hotPos = r.pos + 8;
        e.hotCount = std::min<size_t>(count, kTavixMaxHotSpots);
        r.slot = tail::kSlotHotSpots;
    } else if (room > kMaxKept) {
        problem("entry \"%s\": record 0x%02X of %zu bytes is too large to keep; it is dropped",
                nameOf(e, name, sizeof name), type, room);
        r.slot = 0;
    }
}

void ShapeReader::findGlobalPalette() {
    for (size_t i = 0; i < m_entries.size(); ++i) {
        char raw[5] = {};
        memcpy(raw, m_entries[i].dirname, 4);
        if (m_entries[i].kind == Kind::Palette && isGlobalPaletteName(raw)) {
            m_global = static_cast<int>(i);
            return;
        }
    }
}

void ShapeReader::resolvePalette(int index) {
    Entry& e = m_entries[index];
    if (e.kind != Kind::Bitmap || !isIndexed(e.format->layout)) return;
    if (e.palette >= 0) {
        const Record& r = e.chain[e.palette];
        e.paletteCount = static_cast<int>(u16at(r.pos + 4));
        e.paletteLayout = findPalette(m_variant, r.id)->layoutFor(e.paletteCount);
        e.source = PaletteSource::Local;
    } else if (m_global >= 0) {
        e.paletteCount = m_entries[m_global].paletteCount;
        e.paletteLayout = m_entries[m_global].paletteLayout;
        e.source = PaletteSource::Global;
    } else {
        e.paletteCount = isFourBit(e.format->layout) ? 16 : 256;
        e.source = PaletteSource::Grey;
        char name[64];
        problem("entry %d \"%s\" has no palette and the file no !pal; shown in grey", index,
                nameOf(e, name, sizeof name));
    }
}

void ShapeReader::paletteOf(const Entry& e, TavixColour out[256], int& count) const {
    memset(out, 0, sizeof(TavixColour) * 256);
    count = e.paletteCount;
    if (e.kind == Kind::Palette) {
        decodePalette(m_variant, e.paletteLayout, &m_file[e.chain[0].pos + 16], count, out);
    } else if (e.source == PaletteSource::Local) {
        decodePalette(m_variant, e.paletteLayout, &m_file[e.chain[e.palette].pos + 16], count, out);
    } else if (e.source == PaletteSource::Global) {
        paletteOf(m_entries[m_global], out, count);
    } else {
        const int step = count == 16 ? 17 : 1;
        for (int i = 0; i < count; ++i) {
            const uint8_t v = static_cast<uint8_t>(i * step);
            out[i] = {v, v, v, 255};
        }
    }
}

ByteSpan ShapeReader::payloadOf(int entry, size_t* consumed) {
    const Entry& e = m_entries[entry];
    const Record& first = e.chain[0];
    const size_t start = first.pos + 16;
    if (!(e.id & kRecPacked)) {
        if (consumed) *consumed = e.payload;
        return {&m_file[start], e.payload};
    }
    if (m_cacheEntry != entry) {
        m_cacheEntry = -1;
        refpack::Decoded d =
            refpack::decode({&m_file[start], first.end - start}, e.payload + kPackedSlack);
        if (d.bytes.size() < e.payload)
            fail("the packed pixels unpack to %zu bytes, %zu are needed", d.bytes.size(),
                 e.payload);
        m_cache = std::move(d.bytes);
        m_cacheConsumed = d.consumed;
        m_cacheEntry = entry;
    }
    if (consumed) *consumed = m_cacheConsumed;
    return {m_cache.data(), e.payload};
}

size_t ShapeReader::levelOffset(const Entry& e, int level) const {
    size_t at = 0;
    for (int i = 0; i < level; ++i)
        at += levelBytes(e.format->layout, levelSide(e.width, i), levelSide(e.height, i));
    return at;
}

void ShapeReader::decodeBitmapLevel(int entry, int level, Picture& out) {
    const Entry& e = m_entries[entry];
    ByteSpan payload = payloadOf(entry);
    decodeLevel(m_variant, e.format->layout, payload.data() + levelOffset(e, level),
                levelSide(e.width, level), levelSide(e.height, level), out);
    if (out.indexed) paletteOf(e, out.palette, out.numcolours);
}

void ShapeReader::decode(int frame, Picture& out) {
    const FrameRef ref = m_frames[frame];
    const Entry& e = m_entries[ref.entry];
    if (e.kind == Kind::Broken) fail("%s", reinterpret_cast<const char*>(e.problem.data()));
    if (e.kind == Kind::Bitmap) return decodeBitmapLevel(ref.entry, ref.level, out);
    out.makeIndexed(e.paletteCount, 1);
    for (int i = 0; i < e.paletteCount; ++i)
        out.indices[i] = static_cast<uint8_t>(i);
    paletteOf(e, out.palette, out.numcolours);
}

// Layouts whose stored rows are the caller's rows byte for byte (indices,
// and on a little-endian host little-endian ARGB words) are copied
// straight across, without a picture between.
bool ShapeReader::decodeInto(int frame, TavixInfo& info, uint8_t* pixels, ptrdiff_t pitch) {
    const FrameRef ref = m_frames[frame];
    const Entry& e = m_entries[ref.entry];
    if (e.kind != Kind::Bitmap) return false;
    const Layout layout = e.format->layout;
    const bool indexed = layout == Layout::Idx8;
    const bool words =
        layout == Layout::Argb8888 && !big() && std::endian::native == std::endian::little;
    if (!indexed && !words) return false;
    const int32_t width = levelSide(e.width, ref.level);
    const int32_t height = levelSide(e.height, ref.level);
    if (info.width != width || info.height != height || (info.bufferbpp <= 8) != indexed)
        return false;
    ByteSpan payload = payloadOf(ref.entry);
    const size_t rowBytes = static_cast<size_t>(width) * (indexed ? 1 : 4);
    const uint8_t* from = payload.data() + levelOffset(e, ref.level);
    for (size_t y = 0; y < static_cast<size_t>(height); ++y)
        memcpy(pixels + static_cast<ptrdiff_t>(y) * pitch, from + y * rowBytes, rowBytes);
    if (indexed) {
        int32_t count = 0;
        paletteOf(e, info.colours, count);
    }
    return true;
}

void ShapeReader::describe(int frame, TavixInfo& info, Bytes& tail) {
    const FrameRef ref = m_frames[frame];
    const Entry& e = m_entries[ref.entry];
    const uint8_t type = e.chain.empty() ? 0 : e.chain[0].id & 0x7F;
    info.formatid = m_variant.formatid | type;
    info.subtype = type;
    info.packed = (e.id & kRecPacked) ? 1 : 0;
    // A broken entry's header may be garbage: never let it ask the caller
    // for a huge buffer.
    const bool broken = e.kind == Kind::Broken;
    info.width = broken ? 1 : levelSide(e.width, ref.level);
    info.height = broken ? 1 : levelSide(e.height, ref.level);
    info.bufferbpp = 32;
    Channels bits{};
    if (e.kind == Kind::Bitmap) {
        const Layout layout = e.format->layout;
        info.bpp = nominalBpp(layout);
        bits = channelsOf(layout);
        if (isIndexed(layout)) {
            info.bufferbpp = 8;
            bits = channelsOf(e.paletteLayout);
            paletteOf(e, info.colours, info.numcolours);
        }
        info.centerx = e.centerx >> ref.level;
        info.centery = e.centery >> ref.level;
        info.defaultx = e.posx;
        info.defaulty = e.posy;
        info.framesize = static_cast<int32_t>(
            std::min<size_t>(ref.level ? levelBytes(layout, info.width, info.height)
                                       : e.chain[0].end - e.chain[0].pos - 16,
                             INT32_MAX));
    } else if (e.kind == Kind::Palette) {
        info.bufferbpp = 8;
        info.bpp = 8;
        bits = channelsOf(e.paletteLayout);
        paletteOf(e, info.colours, info.numcolours);
    }
    info.alphabits = bits.alpha;
    info.redbits = bits.red;
    info.greenbits = bits.green;
    info.bluebits = bits.blue;
    if (ref.level) {
        snprintf(info.framename, sizeof info.framename, "mm%d", ref.level);
        info.attributes |= kAttrMipLevel;
    } else {
        nameOf(e, info.framename, sizeof info.framename);
        memcpy(info.comment, &m_file[e.textPos], e.textLength);
        info.numhotspots = static_cast<int32_t>(e.hotCount);
        for (size_t i = 0; i < e.hotCount; ++i)
            info.hotspots[i] = {static_cast<int32_t>(u32at(e.hotPos + 8 * i)),
                                static_cast<int32_t>(u32at(e.hotPos + 8 * i + 4))};
    }
    if (e.kind != Kind::Broken) buildTail(e, ref.level, info, tail);
}

void ShapeReader::buildTail(const Entry& e, int level, const TavixInfo& info, Bytes& out) {
    TailBuilder t(m_variant.formatid);
    uint8_t file[12];
    memcpy(file, &m_file[0], 4);
    memcpy(file + 4, &m_file[12], 4);
    set32(file + 8, m_wholePacked ? uint32_t{tail::kFileWholePacked} : 0u, false);
    ByteSpan pad;
    if (m_firstRecord >= m_dirEnd && m_firstRecord - m_dirEnd < 16)
        pad = {m_file.data() + m_dirEnd, m_firstRecord - m_dirEnd};
    t.add(tail::kTagFile, {ByteSpan(file, 12), pad});

    uint8_t entry[12] = {};
    memcpy(entry, e.dirname, 4);
    entry[4] = e.id;
    entry[5] = static_cast<uint8_t>(level);
    entry[6] = static_cast<uint8_t>(e.mips);
    entry[7] = static_cast<uint8_t>((e.longName ? tail::kEntryLongName : 0) |
                                    (e.nextIsSize ? tail::kEntryNextIsSize : 0));
    set32(entry + 8, e.flagNibble, false);
    t.add(tail::kTagEntry,
          {ByteSpan(entry, 12),
           ByteSpan(reinterpret_cast<const uint8_t*>(info.framename), strlen(info.framename))});

    if (level == 0) {
        Bytes slots;
        for (size_t i = 1; i < e.chain.size(); ++i)
            if (e.chain[i].slot) slots.push_back(e.chain[i].slot);
        if (!slots.empty()) t.add(tail::kTagLayout, slots);
        for (size_t i = 1; i < e.chain.size(); ++i)
            if (e.chain[i].slot == tail::kSlotKept)
                t.add(tail::kTagKept,
                      ByteSpan(&m_file[e.chain[i].pos], e.chain[i].end - e.chain[i].pos));
        const Record* palette = e.kind == Kind::Palette ? &e.chain[0]
                                : e.palette >= 0        ? &e.chain[e.palette]
                                                        : nullptr;
        if (palette)
            t.add(tail::kTagPalette, ByteSpan(&m_file[palette->pos],
                                              16 + entryBytes(e.paletteLayout) * e.paletteCount));
    }
    if (e.kind == Kind::Bitmap) keepStoredPixels(e, level, info, t);
    t.finish(out);
}

// Stored pixels that decoding would not reproduce, and the packed stream,
// so that the writer can give them back unchanged. A payload that does not
// unpack is left out here; reading the frame reports it.
void ShapeReader::keepStoredPixels(const Entry& e, int level, const TavixInfo& info,
                                   TailBuilder& t) {
    try {
        const int entryIndex = static_cast<int>(&e - m_entries.data());
        const Layout layout = e.format->layout;
        if (layout == Layout::Idx8 || layout == Layout::Argb8888 || layout == Layout::Rgb888) {
            // Every stored byte of these comes back from its pixels, so no
            // pixels need keeping and listing the file never decodes them;
            // a packed stream only needs to be checked and measured.
            if (level != 0 || !(e.id & kRecPacked)) return;
            const size_t start = e.chain[0].pos + 16;
            size_t consumed = m_cacheConsumed;
            if (m_cacheEntry != entryIndex) {
                refpack::Measured m = refpack::measure({&m_file[start], e.chain[0].end - start},
                                                       e.payload + kPackedSlack);
                if (m.size < e.payload) return; // reading the frame reports it
                consumed = m.consumed;
            }
            t.add(tail::kTagPacked, ByteSpan(&m_file[start], consumed));
            return;
        }
        size_t consumed = 0;
        ByteSpan payload = payloadOf(entryIndex, &consumed);
        const int32_t w = info.width, h = info.height;
        ByteSpan stored = payload.subspan(levelOffset(e, level), levelBytes(layout, w, h));
        bool lossless = layout != Layout::Dxt1 && layout != Layout::Dxt3 &&
                        layout != Layout::Dxt5 && layout != Layout::GcCmpr;
        if (lossless) {
            Picture picture;
            decodeLevel(m_variant, layout, stored.data(), w, h, picture);
            Bytes again;
            encodeLevel(m_variant, layout, picture, 100, again);
            lossless = again.size() == stored.size() &&
                       std::equal(again.begin(), again.end(), stored.begin());
        }
        if (!lossless) t.add(tail::kTagPixels, stored);
        if (level == 0 && (e.id & kRecPacked))
            t.add(tail::kTagPacked, ByteSpan(&m_file[e.chain[0].pos + 16], consumed));
    } catch (const FormatError&) {
    }
}

} // namespace

bool hasMagic(const Variant& variant, ByteSpan head) {
    if (head.size() < 4) return false;
    return memcmp(head.data(), variant.magic, 4) == 0 ||
           (variant.altMagic[0] && memcmp(head.data(), variant.altMagic, 4) == 0);
}

HostPtr<FrameReader> openShape(const Variant& variant, Bytes&& file) {
    return makeHost<ShapeReader>(variant, std::move(file));
}

} // namespace tavix::shape

#include "ShapeFixtures.h"

#include "imaging/galloc.h"
#include "tavix/core/Host.h"
#include "tavix/core/Picture.h"

#include <cstring>
#include <gtest/gtest.h>

namespace shapetest {

void Endian::u16(Blob& b, uint32_t v) const {
    if (big)
        b.insert(b.end(), {uint8_t(v >> 8), uint8_t(v)});
    else
        b.insert(b.end(), {uint8_t(v), uint8_t(v >> 8)});
}
void Endian::u24(Blob& b, uint32_t v) const {
    if (big)
        b.insert(b.end(), {uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)});
    else
        b.insert(b.end(), {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16)});
}
void Endian::u32(Blob& b, uint32_t v) const {
    if (big)
        b.insert(b.end(), {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)});
    else
        b.insert(b.end(), {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)});
}

Rec bitmap(const Endian& e, uint8_t id, int w, int h, const Blob& pixels, int cx, int cy,
           uint32_t xword, uint32_t yword) {
    Rec r{id, {}};
    for (uint32_t v : {uint32_t(w), uint32_t(h), uint32_t(cx), uint32_t(cy), xword, yword})
        e.u16(r.body, v);
    r.body.insert(r.body.end(), pixels.begin(), pixels.end());
    return r;
}

Rec palette(const Endian& e, uint8_t id, int count, const Blob& entries) {
    Rec r{id, {}};
    for (uint32_t v : {uint32_t(count), 1u, uint32_t(count), 0u, 0u, 0u})
        e.u16(r.body, v);
    r.body.insert(r.body.end(), entries.begin(), entries.end());
    return r;
}

Rec text(const Endian& e, const std::string& s) {
    Rec r{0x6F, {}};
    e.u32(r.body, static_cast<uint32_t>(s.size()));
    r.body.insert(r.body.end(), s.begin(), s.end());
    return r;
}

Rec longName(const std::string& s) {
    Rec r{0x70, Blob(s.begin(), s.end())};
    r.body.push_back(0);
    return r;
}

Rec hotspots(const Endian& e, std::initializer_list<std::pair<int32_t, int32_t>> spots) {
    Rec r{0x7C, {}};
    e.u32(r.body, static_cast<uint32_t>(spots.size()));
    for (auto [x, y] : spots) {
        e.u32(r.body, static_cast<uint32_t>(x));
        e.u32(r.body, static_cast<uint32_t>(y));
    }
    return r;
}

Rec raw(uint8_t id, const Blob& body) {
    return Rec{id, body};
}

static void pad16(Blob& b) {
    while (b.size() % 16)
        b.push_back(0);
}

Blob buildFile(const char* magic, const std::vector<EntrySpec>& entries, bool big,
               const char* dirid) {
    Endian e{big};
    Blob f(magic, magic + 4);
    e.u32(f, 0);
    e.u32(f, static_cast<uint32_t>(entries.size()));
    f.insert(f.end(), dirid, dirid + 4);
    const size_t dir = f.size();
    f.resize(dir + 8 * entries.size(), 0);
    pad16(f);
    for (size_t i = 0; i < entries.size(); ++i) {
        Blob offset;
        e.u32(offset, static_cast<uint32_t>(f.size()));
        memcpy(&f[dir + 8 * i], entries[i].name.data(),
               std::min<size_t>(4, entries[i].name.size()));
        memcpy(&f[dir + 8 * i + 4], offset.data(), 4);
        const auto& recs = entries[i].records;
        for (size_t r = 0; r < recs.size(); ++r) {
            const size_t length = 4 + recs[r].body.size();
            const size_t padded = (length + 15) / 16 * 16;
            f.push_back(recs[r].id);
            e.u24(f, r + 1 < recs.size() ? static_cast<uint32_t>(padded) : 0);
            f.insert(f.end(), recs[r].body.begin(), recs[r].body.end());
            pad16(f);
        }
    }
    Blob size;
    e.u32(size, static_cast<uint32_t>(f.size()));
    memcpy(&f[4], size.data(), 4);
    return f;
}

Blob literalPack(const Blob& data) {
    Blob s = {0x10, 0xFB, uint8_t(data.size() >> 16), uint8_t(data.size() >> 8),
              uint8_t(data.size())};
    size_t at = 0;
    while (data.size() - at >= 4) {
        size_t chunk = std::min<size_t>(112, (data.size() - at) & ~size_t{3});
        s.push_back(static_cast<uint8_t>(0xE0 + chunk / 4 - 1));
        s.insert(s.end(), data.begin() + at, data.begin() + at + chunk);
        at += chunk;
    }
    s.push_back(static_cast<uint8_t>(0xFC | (data.size() - at)));
    s.insert(s.end(), data.begin() + at, data.end());
    return s;
}

ReadResult readWith(const tavix::Driver& driver, const Blob& file) {
    ReadResult result;
    try {
        tavix::HostPtr<tavix::FrameReader> reader =
            driver.open(tavix::Bytes(file.begin(), file.end()));
        result.opened = true;
        for (int i = 0; i < reader->frameCount(); ++i) {
            Frame frame;
            frame.info.size = kTavixInfoSize;
            frame.info.version = kTavixInfoVersion;
            frame.info.frame = i;
            frame.info.quality = 100;
            tavix::Bytes tail;
            reader->describe(i, frame.info, tail);
            frame.tail.assign(tail.begin(), tail.end());
            try {
                tavix::Picture picture;
                reader->decode(i, picture);
                frame.ok = true;
                frame.indexed = picture.indexed;
                frame.indices.assign(picture.indices.begin(), picture.indices.end());
                const size_t n = static_cast<size_t>(picture.width) * picture.height;
                for (size_t p = 0; p < n; ++p)
                    frame.argb.push_back(picture.argbAt(p));
                for (int c = 0; picture.indexed && c < 256; ++c)
                    frame.palette.push_back(picture.paletteArgb(c));
            } catch (const tavix::FormatError& error) {
                result.error = error.message;
            }
            result.frames.push_back(std::move(frame));
        }
    } catch (const tavix::FormatError& error) {
        result.error = error.message;
    } catch (const std::bad_alloc&) {
        result.error = "out of memory";
    }
    return result;
}

static TavixInfo baseInfo(int w, int h, int bufferbpp, const char* name) {
    TavixInfo info{};
    info.size = kTavixInfoSize;
    info.version = kTavixInfoVersion;
    info.width = w;
    info.height = h;
    info.bufferbpp = bufferbpp;
    info.bpp = bufferbpp;
    info.quality = 100;
    snprintf(info.framename, sizeof info.framename, "%s", name);
    return info;
}

WriteInput trueColourInput(int w, int h, const std::vector<uint32_t>& argb, const char* name) {
    WriteInput in;
    in.info = baseInfo(w, h, 32, name);
    in.info.alphabits = in.info.redbits = in.info.greenbits = in.info.bluebits = 8;
    in.argb = argb;
    return in;
}

WriteInput indexedInput(int w, int h, const std::vector<uint8_t>& indices,
                        const std::vector<uint32_t>& palette, const char* name) {
    WriteInput in;
    in.info = baseInfo(w, h, 8, name);
    in.info.numcolours = static_cast<int32_t>(palette.size());
    in.indexed = true;
    in.indices = indices;
    in.palette = palette;
    return in;
}

Blob writeWith(const tavix::Driver& driver, const std::vector<WriteInput>& frames,
               std::string* error) {
    try {
        tavix::HostPtr<tavix::FrameWriter> writer = driver.create(static_cast<int>(frames.size()));
        if (!writer) throw tavix::FormatError{"the driver cannot write"};
        for (const WriteInput& in : frames) {
            tavix::Picture picture;
            if (in.indexed) {
                picture.makeIndexed(in.info.width, in.info.height);
                std::copy(in.indices.begin(), in.indices.end(), picture.indices.begin());
                for (size_t c = 0; c < in.palette.size() && c < 256; ++c)
                    picture.setPaletteArgb(static_cast<int>(c), in.palette[c]);
                picture.numcolours = in.info.numcolours;
            } else {
                picture.makeTrueColour(in.info.width, in.info.height);
                std::copy(in.argb.begin(), in.argb.end(), picture.argb.begin());
            }
            TavixInfo info = in.info;
            for (size_t c = 0; c < in.palette.size() && c < 256; ++c) {
                uint32_t v = in.palette[c];
                info.colours[c] = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
            }
            info.size = static_cast<int32_t>(kTavixInfoSize + in.tail.size());
            writer->add(info, in.tail, std::move(picture));
        }
        tavix::Bytes out;
        writer->finish(out);
        return Blob(out.begin(), out.end());
    } catch (const tavix::FormatError& e) {
        if (error) *error = e.message;
    } catch (const std::bad_alloc&) {
        if (error) *error = "out of memory";
    }
    return {};
}

Blob rewrite(const tavix::Driver& driver, const Blob& file) {
    ReadResult read = readWith(driver, file);
    std::vector<WriteInput> inputs;
    for (const Frame& f : read.frames)
        inputs.push_back(fromFrame(f));
    return writeWith(driver, inputs);
}

// ---------------------------------------------------------------- host

namespace {
std::vector<std::string> g_lines;
TavixCallbacks g_previous;
int32_t g_liveAtStart = 0;

void collect(const char* text) {
    g_lines.emplace_back(text);
}
void* hostAlloc(int32_t size) {
    return galloc(size);
}
int hostFree(void* block) {
    return gfree(block);
}
} // namespace

LibraryHost::LibraryHost() {
    g_previous = tavix::host();
    TavixCallbacks callbacks = g_previous;
    callbacks.alloc = hostAlloc;
    callbacks.free = hostFree;
    tavix::installHost(&callbacks);
    tavix::installPrintHook(collect);
    g_lines.clear();
    g_liveAtStart = galloc_live_count();
}

// Every test that installs the host also proves the library gave back
// every block it took.
LibraryHost::~LibraryHost() {
    EXPECT_EQ(galloc_live_count(), g_liveAtStart) << "blocks the library did not free";
    tavix::installPrintHook(nullptr);
    tavix::installHost(&g_previous);
}

const std::vector<std::string>& LibraryHost::lines() const {
    return g_lines;
}

bool LibraryHost::printed(const std::string& fragment) const {
    for (const std::string& line : g_lines)
        if (line.find(fragment) != std::string::npos) return true;
    return false;
}

void LibraryHost::clear() {
    g_lines.clear();
}

} // namespace shapetest

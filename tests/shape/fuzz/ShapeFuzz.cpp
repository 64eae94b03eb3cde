#include "ShapeFuzz.h"

#include "tavix/core/Driver.h"
#include "tavix/drivers/shape/RefPack.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace tavix {
extern const Driver kFshDriver;
extern const Driver kSshDriver;
extern const Driver kXshDriver;
extern const Driver kGshDriver;
} // namespace tavix

namespace {

using namespace tavix;

constexpr int kMaxFrames = 64;
constexpr size_t kMaxPixels = size_t{1} << 22; // keeps one input's work bounded

struct Kept {
    TavixInfo info;
    Bytes tail;
    Picture picture;
};

void quiet(const char*) {}

// Decoding straight into padded rows must give decode()'s pixels and
// palette and leave the padding alone.
void checkDirectDecode(FrameReader& reader, int frame, const TavixInfo& info,
                       const Picture& picture) {
    const size_t width = static_cast<size_t>(picture.width);
    const size_t height = static_cast<size_t>(picture.height);
    const size_t bytes = picture.indexed ? 1 : 4;
    const size_t pitch = width * bytes + 8;
    Bytes rows(pitch * height, 0xAB);
    TavixInfo request = info;
    memset(request.colours, 0, sizeof request.colours);
    if (!reader.decodeInto(frame, request, rows.data(), static_cast<ptrdiff_t>(pitch))) return;
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* row = rows.data() + y * pitch;
        const void* expected = picture.indexed
                                   ? static_cast<const void*>(&picture.indices[y * width])
                                   : static_cast<const void*>(&picture.argb[y * width]);
        if (memcmp(row, expected, width * bytes) != 0) abort();
        for (size_t i = width * bytes; i < pitch; ++i)
            if (row[i] != 0xAB) abort();
    }
    if (picture.indexed && memcmp(request.colours, picture.palette, sizeof request.colours) != 0)
        abort();
}

void readAndRewrite(const Driver& driver, const uint8_t* data, size_t size, bool again) {
    HostVector<HostPtr<Kept>> kept;
    try {
        HostPtr<FrameReader> reader = driver.open(Bytes(data, data + size));
        const int frames = reader->frameCount();
        for (int i = 0; i < frames && i < kMaxFrames; ++i) {
            auto k = makeHost<Kept>();
            memset(&k->info, 0, sizeof k->info);
            k->info.size = kTavixInfoSize;
            k->info.quality = 10; // the fast DXT fit
            k->info.frame = i;
            reader->describe(i, k->info, k->tail);
            if (static_cast<size_t>(k->info.width) * static_cast<size_t>(k->info.height) >
                kMaxPixels)
                continue;
            try {
                reader->decode(i, k->picture);
            } catch (const FormatError&) {
                continue;
            }
            checkDirectDecode(*reader, i, k->info, k->picture);
            kept.push_back(std::move(k));
        }
    } catch (const FormatError&) {
    } catch (const std::bad_alloc&) {
    }
    if (kept.empty()) return;
    try {
        HostPtr<FrameWriter> writer = driver.create(static_cast<int>(kept.size()));
        for (auto& k : kept) {
            k->info.size = static_cast<int32_t>(kTavixInfoSize + k->tail.size());
            writer->add(k->info, k->tail, std::move(k->picture));
        }
        Bytes file;
        writer->finish(file);
        if (again) readAndRewrite(driver, file.data(), file.size(), false);
    } catch (const FormatError&) {
    } catch (const std::bad_alloc&) {
    }
}

} // namespace

int shapeFuzzReader(const uint8_t* data, size_t size) {
    installPrintHook(quiet);
    for (const Driver* driver : {&kFshDriver, &kSshDriver, &kXshDriver, &kGshDriver}) {
        if (driver->detect({data, size}, "") != kByContent) continue;
        readAndRewrite(*driver, data, size, true);
    }
    return 0;
}

int shapeFuzzRefPack(const uint8_t* data, size_t size) {
    installPrintHook(quiet);
    try {
        refpack::Decoded d = refpack::decode({data, size}, size_t{1} << 24);
        Bytes packed = refpack::encode(d.bytes);
        if (refpack::decode(packed, d.bytes.size()).bytes != d.bytes) abort();
    } catch (const FormatError&) {
    } catch (const std::bad_alloc&) {
    }
    try {
        Bytes packed = refpack::encode({data, size});
        refpack::Decoded back = refpack::decode(packed, size);
        if (back.bytes.size() != size || (size && memcmp(back.bytes.data(), data, size) != 0))
            abort();
    } catch (const FormatError&) {
        abort(); // our own output must always decode
    }
    return 0;
}

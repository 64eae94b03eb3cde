// Feeds arbitrary bytes to the Tavix Images reader the way the library's
// entry points do. Built as a libFuzzer target with -DZY_FUZZ=ON and
// replayed over broken files by the normal tests.

#include "imaging/galloc.h"
#include "imaging/gfile.h"
#include "tavix/core/Driver.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace tavix {
extern const Driver kTvxDriver;
}

namespace {

// Decoding straight into rows with padding must give decode()'s pixels and
// palette and never touch the padding.
void checkDirectDecode(tavix::FrameReader& reader, int frame, const TavixInfo& info,
                       const tavix::Picture& picture) {
    const size_t width = static_cast<size_t>(picture.width);
    const size_t height = static_cast<size_t>(picture.height);
    if (width * height > (1u << 16)) return;
    const size_t bytes = picture.indexed ? 1 : 4;
    const size_t pitch = width * bytes + 8;
    std::vector<uint8_t> rows(pitch * height, 0xAB);
    TavixInfo request = info;
    memset(request.colours, 0, sizeof request.colours);
    if (!reader.decodeInto(frame, request, rows.data(), static_cast<ptrdiff_t>(pitch))) abort();
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavix;
    static const TavixCallbacks callbacks = {gfopenread, gfopenwrite, gfclose, gfread, gfwrite,
                                             gfseek,     gfsize,      gftell,  galloc, gfree};
    installHost(&callbacks);
    const int32_t live = galloc_live_count();
    try {
        Bytes file(data, data + size);
        HostPtr<FrameReader> reader = kTvxDriver.open(std::move(file));
        for (int i = 0; i < reader->frameCount(); ++i) {
            TavixInfo info{};
            Bytes tail;
            reader->describe(i, info, tail);
            Picture picture;
            reader->decode(i, picture);
            checkDirectDecode(*reader, i, info, picture);
        }
    } catch (const FormatError&) {
    } catch (const std::bad_alloc&) {
    }
    if (galloc_live_count() != live) abort(); // a leak is a finding
    return 0;
}

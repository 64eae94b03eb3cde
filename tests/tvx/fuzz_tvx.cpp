// Feeds arbitrary bytes to the Tavix Images reader the way the library's
// entry points do. Built as a libFuzzer target with -DZY_FUZZ=ON and
// replayed over broken files by the normal tests.

#include "imaging/galloc.h"
#include "imaging/gfile.h"
#include "tavix/core/Driver.h"

#include <cstdlib>
#include <cstring>

namespace tavix {
extern const Driver kTvxDriver;
}

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
        }
    } catch (const FormatError&) {
    } catch (const std::bad_alloc&) {
    }
    if (galloc_live_count() != live) abort(); // a leak is a finding
    return 0;
}

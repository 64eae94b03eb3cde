// The exported entry points. Each one catches everything a driver can
// throw and turns it into the entry's failure result plus one printed
// line, so a broken file can never take the program down with it.

#include "tavix/api.h"
#include "tavix/core/Driver.h"
#include "tavix/core/Stream.h"
#include "tavix/RecordLimits.h"

#include <cstring>
#include <new>

using namespace tavix;

namespace {

int g_current = 0;

struct ReaderState {
    int driver;
    HostPtr<FrameReader> reader;
};

struct WriterState {
    int driver;
    intptr_t stream;
    int expected;
    int written = 0;
    HostPtr<FrameWriter> writer;
};

const Driver* current() {
    return driverAt(g_current);
}

template <typename Result, typename Body> Result guarded(Result onFailure, Body body) {
    try {
        return body();
    } catch (const FormatError& error) {
        report("tavix: %s\n", error.message);
    } catch (const std::bad_alloc&) {
        report("tavix: out of memory\n");
    } catch (...) {
        report("tavix: unexpected failure\n");
    }
    return onFailure;
}

// A copy of `info` sized by its own size field, for the host to free.
TavixInfo* newInfoRecord(const TavixInfo& info, const Bytes& tail) {
    size_t total = sizeof(TavixInfo) + tail.size();
    auto* record = static_cast<TavixInfo*>(hostAllocate(total));
    memcpy(record, &info, sizeof(TavixInfo));
    if (!tail.empty())
        memcpy(reinterpret_cast<uint8_t*>(record) + sizeof(TavixInfo), tail.data(), tail.size());
    record->size = static_cast<int32_t>(total);
    return record;
}

void deliver(const Picture& picture, TavixInfo& info, uint8_t* pixels, int32_t pitch) {
    if (info.width != picture.width || info.height != picture.height)
        fail("frame %d is %dx%d, the caller asked for %dx%d", info.frame, picture.width,
             picture.height, info.width, info.height);
    size_t width = static_cast<size_t>(picture.width);
    if (info.bufferbpp <= 8) {
        if (!picture.indexed)
            fail("frame %d is true colour and cannot be read as indices", info.frame);
        for (int y = 0; y < picture.height; ++y)
            memcpy(pixels + static_cast<ptrdiff_t>(y) * pitch, &picture.indices[y * width], width);
        memcpy(info.colours, picture.palette, sizeof info.colours);
        return;
    }
    if (!picture.indexed) {
        for (int y = 0; y < picture.height; ++y)
            memcpy(pixels + static_cast<ptrdiff_t>(y) * pitch, &picture.argb[y * width], width * 4);
        return;
    }
    uint32_t colours[256];
    for (int i = 0; i < 256; ++i)
        colours[i] = picture.paletteArgb(i);
    for (int y = 0; y < picture.height; ++y) {
        auto* row = reinterpret_cast<uint32_t*>(pixels + static_cast<ptrdiff_t>(y) * pitch);
        const uint8_t* from = &picture.indices[y * width];
        for (size_t x = 0; x < width; ++x)
            row[x] = colours[from[x]];
    }
}

// The caller's rows copied once into a picture: appended row by row into
// reserved storage, so the buffer is never zero-filled first only to be
// overwritten, and rows without padding go over in one block.
Picture pictureFrom(const TavixInfo& info, const uint8_t* pixels, int32_t pitch) {
    Picture picture;
    const size_t count = checkedPixelCount(info.width, info.height);
    const size_t width = static_cast<size_t>(info.width);
    const size_t height = static_cast<size_t>(info.height);
    picture.width = info.width;
    picture.height = info.height;
    if (info.bufferbpp <= 8) {
        picture.indexed = true;
        if (static_cast<size_t>(pitch) == width) {
            picture.indices.assign(pixels, pixels + count);
        } else {
            picture.indices.reserve(count);
            for (size_t y = 0; y < height; ++y) {
                const uint8_t* row = pixels + static_cast<ptrdiff_t>(y) * pitch;
                picture.indices.insert(picture.indices.end(), row, row + width);
            }
        }
        memcpy(picture.palette, info.colours, sizeof picture.palette);
        picture.numcolours = info.numcolours;
    } else {
        auto words = [](const uint8_t* row) { return reinterpret_cast<const uint32_t*>(row); };
        if (reinterpret_cast<uintptr_t>(pixels) % alignof(uint32_t) || pitch % 4) {
            // Rows that are not word-aligned cannot be read as words.
            picture.argb.resize(count);
            for (size_t y = 0; y < height; ++y)
                memcpy(&picture.argb[y * width], pixels + static_cast<ptrdiff_t>(y) * pitch,
                       width * 4);
        } else if (static_cast<size_t>(pitch) == width * 4) {
            picture.argb.assign(words(pixels), words(pixels) + count);
        } else {
            picture.argb.reserve(count);
            for (size_t y = 0; y < height; ++y) {
                const uint32_t* row = words(pixels + static_cast<ptrdiff_t>(y) * pitch);
                picture.argb.insert(picture.argb.end(), row, row + width);
            }
        }
    }
    return picture;
}

std::span<const uint8_t> tailOf(const TavixInfo& info) {
    // The size field is the caller's; never trust a tail beyond a sane bound.
    if (info.size <= kTavixInfoSize || info.size > kTavixMaxInfoSize) return {};
    return {reinterpret_cast<const uint8_t*>(&info) + sizeof(TavixInfo),
            static_cast<size_t>(info.size) - sizeof(TavixInfo)};
}

int bestDriverFor(std::span<const uint8_t> head, const char* path) {
    int best = -1;
    DetectScore bestScore = kNotMine;
    for (int i = 0; i < driverCount(); ++i) {
        DetectScore score = driverAt(i)->detect(head, path);
        if (score > bestScore) {
            best = i;
            bestScore = score;
        }
    }
    return best;
}

int openReader(TavixReader* handle, intptr_t stream, const char* path) {
    if (handle) *handle = nullptr;
    return guarded(0, [&] {
        const Driver* driver = current();
        if (!handle || !driver || !stream) return 0;
        auto state = makeHost<ReaderState>();
        state->driver = g_current;
        // Drivers that read through a source take only headers here.
        state->reader = driver->openSource ? driver->openSource(streamSource(stream))
                                           : driver->open(readWhole(stream));
        int frames = state->reader ? state->reader->frameCount() : 0;
        if (frames <= 0) {
            if (state->reader) report("tavix: %s holds no images\n", path ? path : "the file");
            return 0;
        }
        *handle = state.release();
        return frames;
    });
}

} // namespace

extern "C" {

TavixAbout TAVIXabout = [] {
    TavixAbout about{};
    fillAbout(about, 0x54415600, "tavix", 0, {}, "Tavix codec library");
    copyText(about.notes, sizeof about.notes, "Zy's codec library: one driver per file format");
    return about;
}();

TavixBuildInfo TTFinfo = {"libtavix", "1.00", 8};

#ifndef TAVIX_WITHOUT_INIT
unsigned char TAVIX_init_0() {
    g_current = 0;
    TTFinfo.drivers = driverCount();
    return 1;
}
#endif

void TAVIX_restore_0() {
    g_current = 0;
}

TavixAbout* TAVIX_about_0() {
    return guarded<TavixAbout*>(nullptr, [] {
        const Driver* driver = current();
        if (!driver) return static_cast<TavixAbout*>(nullptr);
        auto* about = static_cast<TavixAbout*>(hostAllocate(sizeof(TavixAbout)));
        driver->about(*about);
        about->driverindex = g_current;
        return about;
    });
}

int TAVIX_is_4(intptr_t stream) {
    return guarded(0, [&] {
        const Driver* driver = current();
        if (!driver || !stream) return 0;
        Bytes head = readHead(stream, kDetectBytes);
        return driver->detect({head.data(), head.size()}, "") == kByContent ? 1 : 0;
    });
}

// The tests build variants of the library that lack one entry, to prove the
// binding copes with older libraries; these switches exist only for them.
#ifndef TAVIX_WITHOUT_OPEN16
int TAVIX_open_16(TavixReader* handle, intptr_t stream, const char* path, int /*flag*/) {
    return openReader(handle, stream, path);
}
#endif

int TAVIX_open_12(TavixReader* handle, intptr_t stream, const char* path) {
    return openReader(handle, stream, path);
}

TavixInfo* TAVIX_info_8(TavixReader handle, int frame) {
    return guarded<TavixInfo*>(nullptr, [&]() -> TavixInfo* {
        auto* state = static_cast<ReaderState*>(handle);
        if (!state || frame < 0 || frame >= state->reader->frameCount()) return nullptr;
        TavixInfo info{};
        info.size = kTavixInfoSize;
        info.version = kTavixInfoVersion;
        info.frame = frame;
        info.quality = 100;
        Bytes tail;
        state->reader->describe(frame, info, tail);
        info.frame = frame;
        return newInfoRecord(info, tail);
    });
}

unsigned char TAVIX_read_16(TavixReader handle, TavixInfo* info, void* pixels, int32_t pitch) {
    return guarded<unsigned char>(0, [&]() -> unsigned char {
        auto* state = static_cast<ReaderState*>(handle);
        if (!state || !info || !pixels) return 0;
        if (info->frame < 0 || info->frame >= state->reader->frameCount())
            fail("there is no frame %d", info->frame);
        if (pitch < static_cast<int64_t>(info->width) * (info->bufferbpp <= 8 ? 1 : 4))
            fail("row pitch %d is too small for frame %d", pitch, info->frame);
        if (state->reader->decodeInto(info->frame, *info, static_cast<uint8_t*>(pixels), pitch))
            return 1;
        Picture picture;
        state->reader->decode(info->frame, picture);
        deliver(picture, *info, static_cast<uint8_t*>(pixels), pitch);
        return 1;
    });
}

unsigned char TAVIX_close_4(TavixReader handle) {
    if (!handle) return 0;
    HostPtr<ReaderState> state(static_cast<ReaderState*>(handle));
    return 1;
}

int TAVIX_wopen_16(TavixWriter* handle, intptr_t stream, const char* /*path*/, int frames) {
    if (handle) *handle = nullptr;
    return guarded(0, [&] {
        const Driver* driver = current();
        if (!handle || !driver || !stream || frames <= 0) return 0;
        auto state = makeHost<WriterState>();
        state->driver = g_current;
        state->stream = stream;
        state->expected = frames;
        state->writer = driver->create(frames);
        if (!state->writer) return 0;
        *handle = state.release();
        return 1;
    });
}

unsigned char TAVIX_write_16(TavixWriter handle, const TavixInfo* info, const void* pixels,
                             int32_t pitch) {
    return guarded<unsigned char>(0, [&]() -> unsigned char {
        auto* state = static_cast<WriterState*>(handle);
        if (!state || !info || !pixels) return 0;
        if (state->written >= state->expected)
            fail("more frames written than the %d announced", state->expected);
        if (pitch < static_cast<int64_t>(info->width) * (info->bufferbpp <= 8 ? 1 : 4))
            fail("row pitch %d is too small for a %d pixel wide frame", pitch, info->width);
        const auto* rows = static_cast<const uint8_t*>(pixels);
        checkedPixelCount(info->width, info->height);
        const bool indexed = info->bufferbpp <= 8;
        const bool aligned =
            indexed ||
            (reinterpret_cast<uintptr_t>(rows) % alignof(uint32_t) == 0 && pitch % 4 == 0);
        FrameView view;
        view.width = info->width;
        view.height = info->height;
        view.indexed = indexed;
        view.base = rows;
        view.pitch = pitch;
        view.palette = info->colours;
        view.numcolours = info->numcolours;
        if (!aligned || !state->writer->addDirect(state->stream, *info, tailOf(*info), view))
            state->writer->add(*info, tailOf(*info), pictureFrom(*info, rows, pitch));
        ++state->written;
        return 1;
    });
}

unsigned char TAVIX_wclose_4(TavixWriter handle) {
    if (!handle) return 0;
    HostPtr<WriterState> state(static_cast<WriterState*>(handle));
    return guarded<unsigned char>(0, [&]() -> unsigned char {
        if (state->written != state->expected)
            fail("%d of %d announced frames were written", state->written, state->expected);
        state->writer->finishTo(state->stream);
        return 1;
    });
}

intptr_t TAVIX_gopenstream_8(void*, void*) {
    return 0;
}

intptr_t TAVIX_gopen_8(const char* path, void* /*workarea*/) {
    return guarded<intptr_t>(0, [&]() -> intptr_t {
        if (!path) return 0;
        intptr_t stream = host().openread(path);
        if (!stream) return 0;
        Bytes head = readHead(stream, kDetectBytes);
        int driver = bestDriverFor({head.data(), head.size()}, path);
        if (driver < 0) {
            host().close(stream);
            report("tavix: no driver recognises %s\n", path);
            return 0;
        }
        g_current = driver;
        return stream;
    });
}

void TAVIX_set_4(int driver) {
    if (driverAt(driver)) g_current = driver;
}

int TAVIX_get_0() {
    return g_current;
}

// Unknown names answer -1, which no driver index can be mistaken for.
int TAVIX_find_8(const char* shortname, int) {
    if (!shortname) return -1;
    for (int i = 0; i < driverCount(); ++i)
        if (strcmp(driverAt(i)->shortname, shortname) == 0) return i;
    return -1;
}

int TAVIX_count_0() {
    return driverCount();
}

void TAVIX_freebitmap_4(void*) {}

int TAVIX_loadframe_8(void*, void*) {
    return 0;
}

void TAVIX_installcallbacks64_4(const TavixCallbacks* callbacks) {
    installHost(callbacks);
}

// Not part of the entry table: lets the program route the library's
// messages to its own output window.
void TAVIX_installprint_4(void (*hook)(const char* text)) {
    installPrintHook(hook);
}

} // extern "C"

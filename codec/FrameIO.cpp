#include "codec/FrameIO.h"

#include "codec/TavixBinding.h"
#include "imaging/galloc.h"
#include "imaging/gfile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

void GFreeDelete::operator()(void* block) const {
    if (block) gfree(block);
}

TavixInfoPtr CopyTavixInfo(const TavixInfo& info) {
    int32_t size = info.size >= kTavixInfoSize ? info.size : kTavixInfoSize;
    auto* copy = static_cast<TavixInfo*>(galloc(size));
    if (!copy) return nullptr;
    memcpy(copy, &info, static_cast<size_t>(size));
    copy->size = size;
    return TavixInfoPtr(copy);
}

TavixInfoPtr NewTavixInfo() {
    auto* info = static_cast<TavixInfo*>(galloc(kTavixInfoSize));
    if (!info) return nullptr;
    memset(info, 0, sizeof *info);
    info->size = kTavixInfoSize;
    info->version = kTavixInfoVersion;
    info->quality = 100;
    return TavixInfoPtr(info);
}

void AllocateFramePixels(TavixFrame& frame, size_t bytes) {
    frame.pixels.clear();
    frame.pixels.shrink_to_fit();
    frame.pixels.reserve(bytes);
    advise_huge_pages(frame.pixels.data(), bytes);
    frame.pixels.resize(bytes);
}

int32_t TavixRowPitch(int32_t width, int32_t bufferbpp) {
    int64_t bytes = static_cast<int64_t>(width) * (bufferbpp <= 8 ? 1 : 4);
    return static_cast<int32_t>((bytes + 3) & ~int64_t{3});
}

namespace {

// Owns everything one read holds from the library, in release order.
struct ReadSession {
    intptr_t stream = 0;
    TavixReader reader = nullptr;
    TavixAboutPtr about;
    ~ReadSession() {
        if (reader) TavixClose(reader);
        about.reset();
        if (stream) TavixProgramCallbacks().close(stream);
    }
};

// Adds one line to a read's error text, which holds no final newline.
void noteFailure(std::string& error, int index, const char* what) {
    if (!error.empty()) error += '\n';
    error += "frame " + std::to_string(index) + ": " + what;
}

bool readOneFrame(TavixReader reader, int index, TavixFrame& frame, std::string& error,
                  bool pixels) {
    TavixInfoPtr info(TavixFrameInfo(reader, index));
    if (!info) {
        noteFailure(error, index, "no information record");
        return false;
    }
    if (info->width <= 0 || info->height <= 0) return false; // skipped silently
    if (!pixels) {
        frame.info = std::move(info);
        return true;
    }
    frame.pitch = TavixRowPitch(info->width, info->bufferbpp);
    AllocateFramePixels(frame,
                        static_cast<size_t>(frame.pitch) * static_cast<size_t>(info->height));
    if (!TavixRead(reader, info.get(), frame.pixels.data(), frame.pitch)) {
        noteFailure(error, index, "its pixels could not be read");
        return false;
    }
    frame.info = std::move(info);
    return true;
}

} // namespace

std::string TavixFileProblem(const std::string& path) {
    struct stat st {};
    if (stat(path.c_str(), &st) != 0) return strerror(errno);
    if (S_ISDIR(st.st_mode)) return strerror(EISDIR);
    if (access(path.c_str(), R_OK) != 0) return strerror(errno);
    return {};
}

namespace {

TavixReadResult readFile(const std::string& path, const TavixProgress& progress, bool pixels) {
    TavixReadResult result;
    if (std::string problem = TavixFileProblem(path); !problem.empty()) {
        result.error = "cannot open '" + path + "': " + problem;
        return result;
    }
    ReadSession session;
    char workarea[260] = {};
    session.stream = TavixGOpen(path.c_str(), workarea);
    if (!session.stream) {
        result.error = "no driver of the codec library recognises '" + path + "'";
        return result;
    }
    result.driver = TavixGet();
    TavixSet(result.driver);
    session.about.reset(TavixAboutDriver());
    TavixIs(session.stream);
    int count = TavixOpen(&session.reader, session.stream, path.c_str(), 1);
    if (count <= 0) {
        result.error = "'" + path + "' holds no readable images";
        return result;
    }
    for (int i = 0; i < count; ++i) {
        if (progress && !progress(i, count)) {
            result.error = "cancelled";
            return result;
        }
        TavixFrame frame;
        if (readOneFrame(session.reader, i, frame, result.error, pixels))
            result.frames.push_back(std::move(frame));
    }
    result.ok = result.error.empty();
    return result;
}

} // namespace

TavixReadResult TavixReadFile(const std::string& path, const TavixProgress& progress) {
    return readFile(path, progress, true);
}

TavixReadResult TavixReadInformation(const std::string& path) {
    return readFile(path, {}, false);
}

bool TavixWriteFile(const std::string& path, int driver,
                    const std::vector<const TavixFrame*>& frames, std::string& error,
                    const TavixProgress& progress) {
    TavixSet(driver);
    TavixAboutPtr about(TavixAboutDriver()); // asked for, as the calling order wants
    about.reset();
    const TavixCallbacks callbacks = TavixProgramCallbacks();
    intptr_t stream = callbacks.openwrite(path.c_str());
    if (!stream) {
        error = "cannot create '" + path + "'";
        return false;
    }
    TavixWriter writer = nullptr;
    const int count = static_cast<int>(frames.size());
    bool ok = TavixWOpen(&writer, stream, path.c_str(), count);
    if (!ok) error = "the format refused to write these images";
    for (int i = 0; ok && i < count; ++i) {
        if (progress && !progress(i, count)) {
            error = "cancelled";
            ok = false;
            break;
        }
        const TavixFrame& frame = *frames[i];
        if (!TavixWrite(writer, frame.info.get(), frame.pixels.data(), frame.pitch)) {
            error = "image " + std::to_string(i) + " could not be written";
            ok = false;
        }
    }
    if (writer && !TavixWClose(writer) && ok) {
        error = "the file could not be completed";
        ok = false;
    }
    callbacks.close(stream);
    return ok;
}

bool TavixWriteFileSafely(const std::string& path, int driver,
                          const std::vector<const TavixFrame*>& frames, std::string& error,
                          const TavixProgress& progress) {
    std::string temporary = path + ".zy-partial-" + std::to_string(getpid());
    bool ok = TavixWriteFile(temporary, driver, frames, error, progress);
    if (ok && rename(temporary.c_str(), path.c_str()) != 0) {
        error = "cannot replace '" + path + "': " + strerror(errno);
        ok = false;
    }
    if (!ok) unlink(temporary.c_str());
    return ok;
}

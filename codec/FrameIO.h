#pragma once
// Whole-file reading and writing through the bound codec library, in the
// library's calling order. The document adds progress and images on top;
// zytool and the tests use these directly.

#include "tavix/records.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct GFreeDelete {
    void operator()(void* block) const;
};
// A record from the library or the allocator, freed with gfree.
template <typename T> using GPtr = std::unique_ptr<T, GFreeDelete>;
using TavixInfoPtr = GPtr<TavixInfo>;
using TavixAboutPtr = GPtr<TavixAbout>;

// A copy of `info` by its size field, allocated with galloc (null on failure).
TavixInfoPtr CopyTavixInfo(const TavixInfo& info);
// A zeroed record of the fixed size with version and quality set.
TavixInfoPtr NewTavixInfo();

struct TavixFrame {
    TavixInfoPtr info;
    std::vector<uint8_t> pixels; // rows top to bottom, `pitch` bytes apart
    int32_t pitch = 0;
};

// Gives `frame` `bytes` zeroed bytes of pixels (its old ones are freed
// first), in huge pages where the system offers them: see
// advise_huge_pages().
void AllocateFramePixels(TavixFrame& frame, size_t bytes);

// Bytes per row for a frame of this width and buffer depth, padded to 4.
int32_t TavixRowPitch(int32_t width, int32_t bufferbpp);

// `ok` only when every frame read; `frames` holds those that did, so a
// caller that can live with a partial file (an information listing) may.
struct TavixReadResult {
    bool ok = false;
    int driver = -1;
    std::string error;
    std::vector<TavixFrame> frames;
};

// Called before each frame with (index, count); return false to stop.
using TavixProgress = std::function<bool(int, int)>;

// Why `path` cannot be read at all, in the system's words ("No such file
// or directory", "Permission denied", "Is a directory"); empty when it
// opens for reading, so that whatever fails next is the format's fault.
std::string TavixFileProblem(const std::string& path);

// `error` names the file and the reason, one or more lines without a final
// newline.
TavixReadResult TavixReadFile(const std::string& path, const TavixProgress& progress = {});
// The frames' records only, every `pixels` left empty: drivers that read
// lazily answer from headers and directories without decoding any pixels.
TavixReadResult TavixReadInformation(const std::string& path);

// Writes every frame with the driver; false with `error` set on failure.
// The file at `path` is created (with its folders) and written as it goes:
// callers that must not lose an old file write to a temporary path first.
bool TavixWriteFile(const std::string& path, int driver,
                    const std::vector<const TavixFrame*>& frames, std::string& error,
                    const TavixProgress& progress = {});

// TavixWriteFile into a temporary file beside `path`, renamed over `path`
// only when the whole write succeeded: a failed or cancelled write leaves
// any old file untouched and no partial file behind.
bool TavixWriteFileSafely(const std::string& path, int driver,
                          const std::vector<const TavixFrame*>& frames, std::string& error,
                          const TavixProgress& progress = {});

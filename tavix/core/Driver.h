#pragma once
// The shape of a driver. A driver is one file (or folder) under drivers/
// that defines one `Driver` record: its description, a detector, and
// factories for a reader and a writer. Most readers and writers work on
// whole files in memory and the entry points do the stream I/O around them;
// a driver whose files can be large reads through a `Source` instead, taking
// headers when opened and pixel blocks only when a frame is decoded.

#include "tavix/core/Host.h"
#include "tavix/core/Picture.h"
#include "tavix/core/Errors.h"
#include "tavix/core/Stream.h"
#include "tavix/records.h"

#include <cstdint>
#include <initializer_list>
#include <span>

namespace tavix {

class FrameReader {
  public:
    virtual ~FrameReader() = default;
    virtual int frameCount() const = 0;
    // `info` arrives zeroed with size, version, frame and quality set. A
    // driver that keeps data of its own beyond the fixed record appends it
    // to `tail`; it comes back to the driver's writer unchanged.
    virtual void describe(int frame, TavixInfo& info, Bytes& tail) = 0;
    virtual void decode(int frame, Picture& out) = 0;
    // Decodes straight into the caller's rows (`pitch` bytes apart; 32-bit
    // ARGB words when info.bufferbpp is above 8, else one index a byte with
    // the palette put in info.colours) and returns true; or returns false
    // without touching anything when this frame cannot be delivered that way
    // (another size or kind than the frame's), and decode() serves instead.
    // Saves holding the frame twice.
    virtual bool decodeInto(int /*frame*/, TavixInfo& /*info*/, uint8_t* /*pixels*/,
                            ptrdiff_t /*pitch*/) {
        return false;
    }
};

class FrameWriter {
  public:
    virtual ~FrameWriter() = default;
    // `tail` is whatever followed the fixed record in the caller's info.
    virtual void add(const TavixInfo& info, std::span<const uint8_t> tail, Picture&& picture) = 0;
    // Writes the frame at once from the caller's rows to `stream` and
    // returns true; or returns false without writing anything, and add()
    // is called with a copy instead. Writers whose file needs no other frame
    // to lay out this one take this way, which never copies the frame.
    virtual bool addDirect(intptr_t /*stream*/, const TavixInfo& /*info*/,
                           std::span<const uint8_t> /*tail*/, const FrameView& /*frame*/) {
        return false;
    }
    virtual void finish(Bytes& file) = 0;
    // Writes the finished file to the host's stream. A writer that can
    // produce its file in pieces overrides this so the whole file is never
    // held in memory beside the images.
    virtual void finishTo(intptr_t stream) {
        Bytes file;
        finish(file);
        writeWhole(stream, file);
    }
};

// A writer that lays its file out through a BlockSink: into memory for
// finish(), or piece by piece to the stream for finishTo(), which has
// nothing left to do once addDirect() has written the frames there.
class SinkWriter : public FrameWriter {
  public:
    void finish(Bytes& file) final {
        BlockSink sink(file);
        finishInto(sink);
    }
    void finishTo(intptr_t stream) final {
        if (m_streamed) return;
        BlockSink sink(stream);
        finishInto(sink);
    }

  protected:
    virtual void finishInto(BlockSink& sink) = 0;
    bool m_streamed = false; // addDirect() wrote the frames to the stream
};

enum DetectScore { kNotMine = 0, kByName = 1, kByContent = 2 };

struct Driver {
    const char* shortname;
    void (*about)(TavixAbout& about);
    // `head` is the start of the file (up to kDetectBytes); path may be empty.
    DetectScore (*detect)(std::span<const uint8_t> head, const char* path);
    HostPtr<FrameReader> (*open)(Bytes&& file);
    // Null (after a report) when the driver cannot write `frames` frames.
    HostPtr<FrameWriter> (*create)(int frames);
    // Optional: a reader that pulls what it needs from `source`, which it
    // keeps. Null when the driver reads whole files only.
    HostPtr<FrameReader> (*openSource)(HostPtr<Source>&& source) = nullptr;
};

constexpr size_t kDetectBytes = 65536;

int driverCount();
const Driver* driverAt(int index); // null when out of range

// Helpers shared by the drivers.
void fillAbout(TavixAbout& about, uint32_t formatid, const char* shortname, uint32_t caps,
               std::initializer_list<const char*> extensions, const char* description);
void copyText(char* to, size_t capacity, const char* from);
bool hasExtension(const char* path, const char* extension); // case-insensitive, ".tga"

} // namespace tavix

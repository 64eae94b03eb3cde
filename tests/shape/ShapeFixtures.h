#pragma once
// Hand-built shape files for the tests, assembled byte by byte from the
// published layout (header, directory, 16-byte aligned record chains with
// next offsets), independently of the library's writer. Also direct access
// to the drivers with the checked allocator installed as the library host.

#include "tavix/core/Driver.h"
#include "tavix/records.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tavix {
extern const Driver kFshDriver;
extern const Driver kSshDriver;
extern const Driver kXshDriver;
extern const Driver kGshDriver;
} // namespace tavix

namespace shapetest {

using Blob = std::vector<uint8_t>;

struct Endian {
    bool big = false;
    void u16(Blob& b, uint32_t v) const;
    void u24(Blob& b, uint32_t v) const;
    void u32(Blob& b, uint32_t v) const;
};

// One record: its id, and the bytes after id + next.
struct Rec {
    uint8_t id;
    Blob body;
};

Rec bitmap(const Endian& e, uint8_t id, int w, int h, const Blob& pixels, int cx = 0, int cy = 0,
           uint32_t xword = 0, uint32_t yword = 0);
Rec palette(const Endian& e, uint8_t id, int count, const Blob& entries);
Rec text(const Endian& e, const std::string& s);
Rec longName(const std::string& s);
Rec hotspots(const Endian& e, std::initializer_list<std::pair<int32_t, int32_t>> spots);
Rec raw(uint8_t id, const Blob& body);

struct EntrySpec {
    std::string name; // up to 4 bytes, NUL padded
    std::vector<Rec> records;
};

// The whole file: "magic", size, count, directory id, directory, zero
// padding to 16, then each entry's records, each padded to 16, next = the
// padded distance to the following record, 0 on the last.
Blob buildFile(const char* magic, const std::vector<EntrySpec>& entries, bool big = false,
               const char* dirid = "GIMX");

// RefPack stream of `data` made of literal commands only (plus the end
// command), independent of the library's compressor.
Blob literalPack(const Blob& data);

// ------------------------------------------------------- driver access

struct Frame {
    TavixInfo info{};
    Blob tail;
    bool ok = false; // decode succeeded
    bool indexed = false;
    std::vector<uint8_t> indices;
    std::vector<uint32_t> argb; // palette looked up for indexed frames
    std::vector<uint32_t> palette;
};

struct ReadResult {
    bool opened = false;
    std::string error;
    std::vector<Frame> frames;
};

ReadResult readWith(const tavix::Driver& driver, const Blob& file);

// A frame to write is described the same way: info (with its size, name,
// subtype ...), the tail, and the pixels.
using WriteInput = Frame;
WriteInput trueColourInput(int w, int h, const std::vector<uint32_t>& argb, const char* name = "");
WriteInput indexedInput(int w, int h, const std::vector<uint8_t>& indices,
                        const std::vector<uint32_t>& palette, const char* name = "");
inline const WriteInput& fromFrame(const Frame& frame) {
    return frame;
}

// Writes through the driver; empty with `error` set on failure.
Blob writeWith(const tavix::Driver& driver, const std::vector<WriteInput>& frames,
               std::string* error = nullptr);

// Reads `file` and writes every frame back unchanged.
Blob rewrite(const tavix::Driver& driver, const Blob& file);

// Installs galloc/gfree as the library's allocator and collects every line
// the library prints, for the lifetime of the object; on destruction it
// checks that the library's live-block count is back where it started.
class LibraryHost {
  public:
    LibraryHost();
    ~LibraryHost();
    const std::vector<std::string>& lines() const;
    bool printed(const std::string& fragment) const;
    void clear();
};

inline uint32_t argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return a << 24 | r << 16 | g << 8 | b;
}

} // namespace shapetest

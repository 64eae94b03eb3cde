#pragma once
// What the shape drivers share: the reader and writer factories (one
// implementation for every platform variant) and the library-side view of
// the tail described in ShapeTail.h.

#include "tavix/core/Driver.h"
#include "tavix/drivers/shape/Format.h"
#include "tavix/drivers/shape/ShapeTail.h"

#include <cstdint>
#include <span>

namespace tavix::shape {

using ByteSpan = std::span<const uint8_t>;

HostPtr<FrameReader> openShape(const Variant& variant, Bytes&& file);
HostPtr<FrameWriter> createShape(const Variant& variant);
DetectScore detectShape(const Variant& variant, ByteSpan head, const char* path);
void aboutShape(const Variant& variant, TavixAbout& about);

// True when `head` starts with one of the variant's magics.
bool hasMagic(const Variant& variant, ByteSpan head);

// ------------------------------------------------------------------ tails

class TailBuilder {
  public:
    explicit TailBuilder(uint32_t variantId);
    void add(uint16_t tag, ByteSpan data);
    void add(uint16_t tag, std::initializer_list<ByteSpan> parts);
    void finish(Bytes& out);

  private:
    Bytes m_bytes;
    uint32_t m_count = 0;
};

// A tail taken apart; the spans point into the caller's record.
struct TailData {
    uint32_t variant = 0; // 0: not a shape tail
    bool hasFile = false;
    uint8_t magic[4] = {};
    uint8_t dirid[4] = {};
    uint32_t fileFlags = 0;
    ByteSpan dirPad;
    bool hasEntry = false;
    uint8_t dirname[4] = {};
    uint8_t recordId = 0;
    uint8_t level = 0;
    uint8_t mips = 0;
    uint8_t entryFlags = 0;
    uint16_t flagNibble = 0;
    ByteSpan originalName;
    ByteSpan layout;
    HostVector<ByteSpan> kept;
    ByteSpan palette;
    ByteSpan pixels;
    ByteSpan packed;
};

// Empty (variant 0) unless the info's format id belongs to the shape family
// and the tail is well formed.
TailData parseTail(uint32_t formatid, ByteSpan tail);

} // namespace tavix::shape

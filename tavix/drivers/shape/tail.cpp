#include "tavix/drivers/shape/Shape.h"

#include <cstring>

namespace tavix::shape {

TailBuilder::TailBuilder(uint32_t variantId) {
    m_bytes.insert(m_bytes.end(), {'Z', 'Y', 'S', 'H'});
    put16(m_bytes, tail::kVersion, false);
    put16(m_bytes, tail::kHeaderSize, false);
    put32(m_bytes, variantId & 0xFFFFFF00u, false);
    put32(m_bytes, 0, false); // item count, patched by finish()
}

void TailBuilder::add(uint16_t tag, ByteSpan data) {
    add(tag, {data});
}

void TailBuilder::add(uint16_t tag, std::initializer_list<ByteSpan> parts) {
    size_t length = 0;
    for (ByteSpan part : parts)
        length += part.size();
    put16(m_bytes, tag, false);
    put16(m_bytes, 0, false);
    put32(m_bytes, static_cast<uint32_t>(length), false);
    for (ByteSpan part : parts)
        m_bytes.insert(m_bytes.end(), part.begin(), part.end());
    while (m_bytes.size() % 4)
        m_bytes.push_back(0);
    ++m_count;
}

void TailBuilder::finish(Bytes& out) {
    set32(&m_bytes[12], m_count, false);
    out = std::move(m_bytes);
}

TailData parseTail(uint32_t formatid, ByteSpan bytes) {
    TailData t;
    if (!variantOf(formatid)) return t;
    const uint32_t variant = tail::variantOf(bytes.data(), bytes.size());
    if (!variant || !shape::variantOf(variant)) return t;
    bool whole = tail::forEachItem(bytes.data(), bytes.size(),
                                   [&](uint16_t tag, const uint8_t* p, size_t n) {
                                       ByteSpan data(p, n);
                                       switch (tag) {
                                       case tail::kTagFile:
                                           if (n < 12) return;
                                           t.hasFile = true;
                                           memcpy(t.magic, p, 4);
                                           memcpy(t.dirid, p + 4, 4);
                                           t.fileFlags = tail::rd32(p + 8);
                                           t.dirPad = data.subspan(12);
                                           break;
                                       case tail::kTagEntry:
                                           if (n < 12) return;
                                           t.hasEntry = true;
                                           memcpy(t.dirname, p, 4);
                                           t.recordId = p[4];
                                           t.level = p[5];
                                           t.mips = p[6];
                                           t.entryFlags = p[7];
                                           t.flagNibble = static_cast<uint16_t>(tail::rd16(p + 8));
                                           t.originalName = data.subspan(12);
                                           break;
                                       case tail::kTagLayout:
                                           t.layout = data;
                                           break;
                                       case tail::kTagKept:
                                           t.kept.push_back(data);
                                           break;
                                       case tail::kTagPalette:
                                           t.palette = data;
                                           break;
                                       case tail::kTagPixels:
                                           t.pixels = data;
                                           break;
                                       case tail::kTagPacked:
                                           t.packed = data;
                                           break;
                                       default:
                                           break; // a later version's item
                                       }
                                   });
    if (!whole) return TailData{};
    t.variant = variant;
    return t;
}

} // namespace tavix::shape

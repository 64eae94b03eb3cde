#pragma once
// Bounds-checked reading of a file image in memory and appending writes.
// Every read past the end throws FormatError, so parsers never have to test
// each access and can never run off the buffer.

#include "tavix/core/Errors.h"
#include "tavix/core/Host.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavix {

class ByteReader {
  public:
    ByteReader(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}

    size_t size() const { return m_size; }
    size_t pos() const { return m_pos; }
    size_t remaining() const { return m_size - m_pos; }
    const uint8_t* data() const { return m_data; }

    void seek(size_t at) {
        if (at > m_size) fail("offset %zu is past the end of the file (%zu bytes)", at, m_size);
        m_pos = at;
    }
    void skip(size_t n) { seek(need(n) + n); }

    // Pointer to the next n bytes, which are consumed.
    const uint8_t* take(size_t n) {
        size_t at = need(n);
        m_pos = at + n;
        return m_data + at;
    }
    uint8_t u8() { return *take(1); }
    uint16_t u16le() {
        const uint8_t* p = take(2);
        return static_cast<uint16_t>(p[0] | p[1] << 8);
    }
    uint16_t u16be() {
        const uint8_t* p = take(2);
        return static_cast<uint16_t>(p[0] << 8 | p[1]);
    }
    uint32_t u24le() {
        const uint8_t* p = take(3);
        return p[0] | p[1] << 8 | static_cast<uint32_t>(p[2]) << 16;
    }
    uint32_t u24be() {
        const uint8_t* p = take(3);
        return static_cast<uint32_t>(p[0]) << 16 | p[1] << 8 | p[2];
    }
    uint32_t u32le() {
        const uint8_t* p = take(4);
        return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
    }
    uint32_t u32be() {
        const uint8_t* p = take(4);
        return static_cast<uint32_t>(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3];
    }
    int32_t i32le() { return static_cast<int32_t>(u32le()); }
    void copy(void* to, size_t n) { memcpy(to, take(n), n); }

  private:
    size_t need(size_t n) const {
        if (n > m_size - m_pos)
            fail("the file ends early: %zu bytes needed at offset %zu, %zu left", n, m_pos,
                 m_size - m_pos);
        return m_pos;
    }

    const uint8_t* m_data;
    size_t m_size;
    size_t m_pos = 0;
};

class ByteWriter {
  public:
    explicit ByteWriter(Bytes& out) : m_out(out) {}

    size_t pos() const { return m_out.size(); }
    void u8(uint32_t v) { m_out.push_back(static_cast<uint8_t>(v)); }
    void u16le(uint32_t v) {
        u8(v);
        u8(v >> 8);
    }
    void u16be(uint32_t v) {
        u8(v >> 8);
        u8(v);
    }
    void u24le(uint32_t v) {
        u16le(v);
        u8(v >> 16);
    }
    void u32le(uint32_t v) {
        u16le(v);
        u16le(v >> 16);
    }
    void u32be(uint32_t v) {
        u16be(v >> 16);
        u16be(v);
    }
    void bytes(const void* from, size_t n) {
        auto* p = static_cast<const uint8_t*>(from);
        m_out.insert(m_out.end(), p, p + n);
    }
    void zeros(size_t n) { m_out.resize(m_out.size() + n, 0); }
    void alignTo(size_t boundary) {
        while (m_out.size() % boundary)
            m_out.push_back(0);
    }
    void patch32le(size_t at, uint32_t v) {
        for (int i = 0; i < 4; ++i)
            m_out[at + i] = static_cast<uint8_t>(v >> (8 * i));
    }

  private:
    Bytes& m_out;
};

} // namespace tavix

#pragma once
// Moving files between the host's streams and memory.

#include "tavix/core/Host.h"

#include <cstddef>
#include <cstdint>

namespace tavix {

// Up to `limit` bytes from the start of the stream; the position is
// restored to the start afterwards.
Bytes readHead(intptr_t stream, size_t limit);
// The whole stream from its start.
Bytes readWhole(intptr_t stream);
void writeWhole(intptr_t stream, const Bytes& bytes);
void writeBlock(intptr_t stream, const uint8_t* data, size_t count);

// Where a writer's bytes go: straight into a file image in memory, or to
// the host's stream in blocks of about kSinkBlock bytes, so a large file is
// never held whole. Writers append small pieces to bytes() and call
// rowDone() now and then; put() passes large blocks through uncopied.
class BlockSink {
  public:
    static constexpr size_t kSinkBlock = size_t{4} << 20;
    explicit BlockSink(Bytes& file) : m_bytes(file) {}
    explicit BlockSink(intptr_t stream) : m_bytes(m_own), m_stream(stream) {}
    BlockSink(const BlockSink&) = delete;
    BlockSink& operator=(const BlockSink&) = delete;

    Bytes& bytes() { return m_bytes; }
    void rowDone() {
        if (m_stream && m_bytes.size() >= kSinkBlock) flush();
    }
    void put(const uint8_t* data, size_t count) {
        if (m_stream && count >= kSinkBlock) {
            flush();
            writeBlock(m_stream, data, count);
            return;
        }
        m_bytes.insert(m_bytes.end(), data, data + count);
        rowDone();
    }
    // Must be called once all is put (a no-op for memory).
    void flush() {
        if (!m_stream || m_bytes.empty()) return;
        writeBlock(m_stream, m_bytes.data(), m_bytes.size());
        m_bytes.clear();
    }

  private:
    Bytes m_own;
    Bytes& m_bytes;
    intptr_t m_stream = 0;
};

// Random access to a file being read. A reader built on a source takes only
// the blocks it needs (headers when the file is opened, pixel data when a
// frame is decoded), so listing a large file never reads its pixels and
// decoding never holds the whole file beside the image.
class Source {
  public:
    virtual ~Source() = default;
    virtual uint64_t size() const = 0;
    // Exactly `count` bytes from `offset`; FormatError when the file ends
    // first, so a reader can trust every block it is given.
    virtual void read(uint64_t offset, void* to, size_t count) = 0;
    // The whole file when it is already in memory, else null.
    virtual const uint8_t* memory() const { return nullptr; }

    Bytes bytes(uint64_t offset, size_t count) {
        Bytes block(count);
        read(offset, block.data(), count);
        return block;
    }
};

// A source reading the host's stream (which stays the caller's to close).
HostPtr<Source> streamSource(intptr_t stream);
// A source over a file image already in memory.
HostPtr<Source> memorySource(Bytes&& file);

} // namespace tavix

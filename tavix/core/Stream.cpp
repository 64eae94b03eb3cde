#include "tavix/core/Stream.h"

#include "tavix/core/Errors.h"

#include <algorithm>
#include <cstring>

namespace tavix {
namespace {

constexpr int64_t kMaxFileBytes = 0x7FFFFF00; // what the host allocator can count
// The callbacks count in signed 32 bits; large blocks move in pieces this big.
constexpr size_t kChunk = size_t{1} << 30;

void rewind(intptr_t stream) {
    if (!host().seek(stream, 0, 0)) fail("cannot seek in the file");
}

size_t readInto(intptr_t stream, uint8_t* to, size_t count) {
    size_t done = 0;
    while (done < count) {
        int32_t chunk = static_cast<int32_t>(std::min(count - done, kChunk));
        int32_t got = host().read(stream, to + done, chunk);
        if (got <= 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

class StreamSource : public Source {
  public:
    explicit StreamSource(intptr_t stream) : m_stream(stream) {
        int64_t size = host().size(stream);
        if (size < 0) fail("cannot tell the size of the file");
        m_size = static_cast<uint64_t>(size);
    }

    uint64_t size() const override { return m_size; }

    void read(uint64_t offset, void* to, size_t count) override {
        if (offset > m_size || count > m_size - offset)
            fail("the file ends early: %zu bytes needed at offset %llu, %llu left", count,
                 (unsigned long long)offset,
                 (unsigned long long)(offset > m_size ? 0 : m_size - offset));
        if (count == 0) return;
        // Sequential reads (the common case) need no seek.
        if (offset != m_at) {
            if (!host().seek(m_stream, static_cast<uint32_t>(offset),
                             static_cast<int32_t>(offset >> 32)))
                fail("cannot seek to offset %llu in the file", (unsigned long long)offset);
        }
        size_t got = readInto(m_stream, static_cast<uint8_t*>(to), count);
        m_at = offset + got;
        if (got != count) {
            m_at = ~uint64_t{0};
            fail("could read only %zu of %zu bytes at offset %llu", got, count,
                 (unsigned long long)offset);
        }
    }

  private:
    intptr_t m_stream;
    uint64_t m_size = 0;
    uint64_t m_at = ~uint64_t{0}; // unknown until the first read
};

class MemorySource : public Source {
  public:
    explicit MemorySource(Bytes&& file) : m_file(std::move(file)) {}
    uint64_t size() const override { return m_file.size(); }
    void read(uint64_t offset, void* to, size_t count) override {
        if (offset > m_file.size() || count > m_file.size() - offset)
            fail("the file ends early: %zu bytes needed at offset %llu, %zu left", count,
                 (unsigned long long)offset,
                 offset > m_file.size() ? size_t{0} : m_file.size() - static_cast<size_t>(offset));
        if (count) memcpy(to, m_file.data() + offset, count);
    }
    const uint8_t* memory() const override { return m_file.data(); }

  private:
    Bytes m_file;
};

} // namespace

Bytes readHead(intptr_t stream, size_t limit) {
    rewind(stream);
    Bytes head(limit);
    head.resize(readInto(stream, head.data(), limit));
    rewind(stream);
    return head;
}

Bytes readWhole(intptr_t stream) {
    int64_t size = host().size(stream);
    if (size < 0 || size > kMaxFileBytes)
        fail("the file is too large (%lld bytes)", (long long)size);
    rewind(stream);
    Bytes bytes(static_cast<size_t>(size));
    size_t got = readInto(stream, bytes.data(), bytes.size());
    if (got != bytes.size()) fail("could read only %zu of %zu bytes", got, bytes.size());
    return bytes;
}

void writeBlock(intptr_t stream, const uint8_t* data, size_t count) {
    size_t done = 0;
    while (done < count) {
        int32_t chunk = static_cast<int32_t>(std::min(count - done, kChunk));
        int32_t put = host().write(stream, data + done, chunk);
        if (put <= 0) fail("the disk refused the write after %zu of %zu bytes", done, count);
        done += static_cast<size_t>(put);
    }
}

void writeWhole(intptr_t stream, const Bytes& bytes) {
    writeBlock(stream, bytes.data(), bytes.size());
}

HostPtr<Source> streamSource(intptr_t stream) {
    return makeHost<StreamSource>(stream);
}

HostPtr<Source> memorySource(Bytes&& file) {
    return makeHost<MemorySource>(std::move(file));
}

} // namespace tavix

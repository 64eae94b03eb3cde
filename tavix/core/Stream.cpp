#include "tavix/core/Stream.h"

#include "tavix/core/Errors.h"

#include <algorithm>

namespace tavix {
namespace {

constexpr int64_t kMaxFileBytes = 0x7FFFFF00; // what the host allocator can count

void rewind(intptr_t stream) {
    if (!host().seek(stream, 0, 0)) fail("cannot seek in the file");
}

size_t readInto(intptr_t stream, uint8_t* to, size_t count) {
    size_t done = 0;
    while (done < count) {
        int32_t chunk = static_cast<int32_t>(std::min<size_t>(count - done, 1 << 20));
        int32_t got = host().read(stream, to + done, chunk);
        if (got <= 0) break;
        done += static_cast<size_t>(got);
    }
    return done;
}

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
    if (size < 0 || size > kMaxFileBytes) fail("the file is too large (%lld bytes)", (long long)size);
    rewind(stream);
    Bytes bytes(static_cast<size_t>(size));
    size_t got = readInto(stream, bytes.data(), bytes.size());
    if (got != bytes.size()) fail("could read only %zu of %zu bytes", got, bytes.size());
    return bytes;
}

void writeWhole(intptr_t stream, const Bytes& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        int32_t chunk = static_cast<int32_t>(std::min<size_t>(bytes.size() - done, 1 << 20));
        int32_t put = host().write(stream, bytes.data() + done, chunk);
        if (put <= 0) fail("the disk refused the write after %zu of %zu bytes", done, bytes.size());
        done += static_cast<size_t>(put);
    }
}

} // namespace tavix

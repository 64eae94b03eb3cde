#include "tavix/drivers/shape/RefPack.h"

#include "tavix/core/Errors.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tavix::refpack {
namespace {

constexpr size_t kMaxCopy = 1028;
constexpr size_t kWindow = 131072;
// No command produces more than 3 literals plus 1028 copied bytes from 4
// input bytes, so a declared size beyond this many bytes per input byte
// cannot be honest; refusing it early keeps a forged header from asking
// for gigabytes.
constexpr size_t kMaxExpansion = 258;

struct Header {
    size_t length; // header bytes
    size_t size;   // declared uncompressed size
};

Header readHeader(std::span<const uint8_t> data) {
    if (!looksPacked(data)) fail("not a RefPack stream");
    const uint8_t flags = data[0];
    const size_t field = (flags & 0x80) ? 4 : 3;
    const size_t length = 2 + field * ((flags & 0x01) ? 2 : 1);
    if (data.size() < length) fail("the RefPack header is cut short");
    const uint8_t* p = data.data() + length - field;
    size_t size = 0;
    for (size_t i = 0; i < field; ++i)
        size = size << 8 | p[i];
    return {length, size};
}

// Runs the command stream, writing at most out.size() bytes. With
// `partial` the run stops quietly once the buffer is full (detection
// needs only the first bytes); otherwise the whole declared size must be
// produced. Returns the input bytes consumed.
size_t run(std::span<const uint8_t> data, const Header& header, uint8_t* out, size_t capacity,
           bool partial) {
    const uint8_t* in = data.data();
    const size_t end = data.size();
    size_t at = header.length;
    size_t done = 0;
    bool ended = false;
    auto need = [&](size_t n) {
        if (end - at < n) fail("the RefPack stream ends inside a command at byte %zu", at);
    };
    // Every count is checked against the input, the declared size and the
    // output written so far before a byte moves; the bytes then move in
    // blocks. Without `out` the stream is only checked and measured.
    auto put = [&](size_t literals, size_t length, size_t distance) {
        if (literals) {
            need(literals);
            if (header.size - done < literals) fail("RefPack literals run past the declared size");
            if (out && done < capacity)
                memcpy(out + done, in + at, std::min(literals, capacity - done));
            at += literals;
            done += literals;
        }
        if (length) {
            if (distance > done)
                fail("a RefPack copy reaches %zu bytes back with only %zu written", distance, done);
            if (header.size - done < length) fail("a RefPack copy runs past the declared size");
            if (out && done < capacity) {
                const size_t n = std::min(done + length, capacity) - done;
                uint8_t* to = out + done;
                const uint8_t* from = to - distance;
                if (distance >= n) {
                    memcpy(to, from, n);
                } else if (distance == 1) {
                    memset(to, *from, n);
                } else {
                    // Overlapping: the copy repeats the last `distance`
                    // bytes. What is written so far is whole periods, so
                    // it can be copied again from `from` in one block,
                    // doubling the written stretch each time.
                    size_t copied = 0;
                    while (copied < n) {
                        const size_t chunk = std::min(n - copied, copied + distance);
                        memcpy(to + copied, from, chunk);
                        copied += chunk;
                    }
                }
            }
            done += length;
        }
    };
    while (done < header.size && !(partial && done >= capacity)) {
        if (at >= end) fail("the RefPack stream ends after %zu of %zu bytes", done, header.size);
        const uint8_t b0 = in[at];
        size_t literals = 0, length = 0, distance = 0;
        if (b0 < 0x80) {
            need(2);
            const uint8_t b1 = in[at + 1];
            literals = b0 & 3;
            length = ((b0 >> 2) & 7) + 3;
            distance = ((b0 & 0x60) << 3) + b1 + 1;
            at += 2;
        } else if (b0 < 0xC0) {
            need(3);
            const uint8_t b1 = in[at + 1], b2 = in[at + 2];
            literals = b1 >> 6;
            length = (b0 & 0x3F) + 4;
            distance = ((b1 & 0x3F) << 8) + b2 + 1;
            at += 3;
        } else if (b0 < 0xE0) {
            need(4);
            const uint8_t b1 = in[at + 1], b2 = in[at + 2], b3 = in[at + 3];
            literals = b0 & 3;
            length = ((b0 & 0x0C) << 6) + b3 + 5;
            distance = ((b0 & 0x10) << 12) + (b1 << 8) + b2 + 1;
            at += 4;
        } else if (b0 < 0xFC) {
            literals = ((b0 & 0x1F) + 1) * 4;
            at += 1;
        } else {
            literals = b0 & 3;
            at += 1;
            ended = true;
        }
        put(literals, length, distance);
        if (ended) break;
    }
    if (partial) {
        if (done < capacity) fail("the RefPack stream stops after %zu bytes", done);
        return at;
    }
    if (done != header.size)
        fail("the RefPack stream stops after %zu of %zu bytes", done, header.size);
    // A stream may close with an end command after the last byte; take it.
    if (!ended && at < end && in[at] == 0xFC) ++at;
    return at;
}

void checkPlausible(std::span<const uint8_t> data, const Header& header, size_t limit) {
    if (header.size > limit)
        fail("the RefPack stream unpacks to %zu bytes, more than the %zu expected", header.size,
             limit);
    if (header.size / kMaxExpansion > data.size())
        fail("the RefPack stream claims %zu bytes from only %zu", header.size, data.size());
}

// ---------------------------------------------------------------- encoder

constexpr int kMaxHashBits = 16;
constexpr int kMaxChain = 48;
constexpr size_t kNiceLength = 256;
// A match at least this long is taken without looking one byte further.
constexpr size_t kLazyBelow = 32;
// After this many positions in a row without a match the search looks only
// at every second position, after twice as many at every third, and so on
// up to every kMaxSkip-th: data that does not repeat (noise, packed data)
// is passed over quickly, and the first match brings the step back to one.
constexpr size_t kSkipAfter = 128;
constexpr size_t kMaxSkip = 32;

uint32_t hash3(const uint8_t* p, int bits) {
    uint32_t v = static_cast<uint32_t>(p[0]) << 16 | p[1] << 8 | p[2];
    return (v * 2654435761u) >> (32 - bits);
}

// Small inputs get a small table: clearing 64K heads per call would cost
// more than compressing a few hundred bytes.
int hashBitsFor(size_t size) {
    int bits = 10;
    while (bits < kMaxHashBits && (size_t{1} << bits) < size)
        ++bits;
    return bits;
}

// The chain ring: a power of two, so a position's slot is a mask away.
size_t ringFor(size_t size) {
    size_t ring = 1024;
    while (ring < kWindow && ring < size)
        ring <<= 1;
    return ring;
}

// Bytes a copy command of this length and distance takes; 0 = impossible.
size_t copyCost(size_t length, size_t distance) {
    if (length >= 3 && length <= 10 && distance <= 1024) return 2;
    if (length >= 4 && length <= 67 && distance <= 16384) return 3;
    if (length >= 5 && length <= kMaxCopy && distance <= kWindow) return 4;
    return 0;
}

// How many leading bytes of a and b agree, up to `limit`; eight at a time.
size_t commonLength(const uint8_t* a, const uint8_t* b, size_t limit) {
    size_t n = 0;
    while (n + 8 <= limit) {
        uint64_t x, y;
        memcpy(&x, a + n, 8);
        memcpy(&y, b + n, 8);
        if (x != y) {
            if constexpr (std::endian::native == std::endian::little)
                return n + static_cast<size_t>(std::countr_zero(x ^ y)) / 8;
            else
                return n + static_cast<size_t>(std::countl_zero(x ^ y)) / 8;
        }
        n += 8;
    }
    while (n < limit && a[n] == b[n])
        ++n;
    return n;
}

struct Match {
    size_t length = 0;
    size_t distance = 0;
    long saving() const {
        size_t cost = copyCost(length, distance);
        return cost ? static_cast<long>(length) - static_cast<long>(cost) : 0;
    }
};

class Encoder {
  public:
    Encoder(std::span<const uint8_t> data, Bytes& out)
        : m_in(data.data()), m_size(data.size()), m_out(out), m_bits(hashBitsFor(m_size)),
          m_head(size_t{1} << m_bits, -1), m_prev(ringFor(m_size), -1), m_mask(m_prev.size() - 1) {}

    void run() {
        size_t pos = 0, literalStart = 0;
        while (pos < m_size) {
            Match here = best(pos);
            if (here.saving() <= 0) {
                // Every position still goes into the chains, so a repeat
                // of this stretch is found as soon as the search looks.
                const size_t step = std::min(kMaxSkip, 1 + (pos - literalStart) / kSkipAfter);
                for (size_t end = std::min(pos + step, m_size); pos < end; ++pos)
                    insert(pos);
                continue;
            }
            insert(pos);
            if (here.length < kLazyBelow && pos + 1 < m_size) {
                Match next = best(pos + 1);
                if (next.saving() > here.saving() + 1) { // worth one more literal
                    ++pos;
                    continue;
                }
            }
            emitCopy(literalStart, pos, here);
            for (size_t i = pos + 1; i < pos + here.length; ++i)
                insert(i);
            pos += here.length;
            literalStart = pos;
        }
        size_t left = flushLiterals(literalStart, m_size);
        m_out.push_back(static_cast<uint8_t>(0xFC | left));
        m_out.insert(m_out.end(), m_in + m_size - left, m_in + m_size);
    }

  private:
    void insert(size_t pos) {
        if (pos + 3 > m_size) return;
        uint32_t h = hash3(m_in + pos, m_bits);
        m_prev[pos & m_mask] = m_head[h];
        m_head[h] = static_cast<int32_t>(pos);
    }

    Match best(size_t pos) const {
        Match found;
        if (pos + 3 > m_size) return found;
        const size_t limit = std::min(kMaxCopy, m_size - pos);
        const uint8_t* a = m_in + pos;
        int32_t candidate = m_head[hash3(a, m_bits)];
        for (int chain = 0; candidate >= 0 && chain < kMaxChain; ++chain) {
            size_t distance = pos - static_cast<size_t>(candidate);
            if (distance > kWindow || distance == 0) break;
            const uint8_t* b = m_in + candidate;
            // Only a candidate that agrees at the byte where the best so
            // far stops can beat it.
            if (found.length == 0 || (found.length < limit && b[found.length] == a[found.length])) {
                size_t n = commonLength(a, b, limit);
                Match m{n, distance};
                if (m.saving() > found.saving()) found = m;
                if (n >= kNiceLength || n == limit) break;
            }
            int32_t older = m_prev[static_cast<size_t>(candidate) & m_mask];
            if (older >= candidate) break; // the ring slot was reused
            candidate = older;
        }
        return found;
    }

    // Writes literal runs of multiples of four; returns how many (0-3) are
    // left for the next command to carry.
    size_t flushLiterals(size_t from, size_t to) {
        size_t count = to - from;
        while (count >= 4) {
            size_t chunk = std::min<size_t>(112, count & ~size_t{3});
            m_out.push_back(static_cast<uint8_t>(0xE0 + chunk / 4 - 1));
            m_out.insert(m_out.end(), m_in + from, m_in + from + chunk);
            from += chunk;
            count -= chunk;
        }
        return count;
    }

    void emitCopy(size_t literalStart, size_t pos, const Match& m) {
        size_t p = flushLiterals(literalStart, pos);
        size_t d = m.distance - 1;
        size_t cost = copyCost(m.length, m.distance);
        if (cost == 2) {
            m_out.push_back(static_cast<uint8_t>(((d >> 3) & 0x60) | ((m.length - 3) << 2) | p));
            m_out.push_back(static_cast<uint8_t>(d));
        } else if (cost == 3) {
            m_out.push_back(static_cast<uint8_t>(0x80 | (m.length - 4)));
            m_out.push_back(static_cast<uint8_t>(p << 6 | d >> 8));
            m_out.push_back(static_cast<uint8_t>(d));
        } else {
            size_t l = m.length - 5;
            m_out.push_back(
                static_cast<uint8_t>(0xC0 | ((d >> 12) & 0x10) | ((l >> 6) & 0x0C) | p));
            m_out.push_back(static_cast<uint8_t>(d >> 8));
            m_out.push_back(static_cast<uint8_t>(d));
            m_out.push_back(static_cast<uint8_t>(l));
        }
        m_out.insert(m_out.end(), m_in + pos - p, m_in + pos);
    }

    const uint8_t* m_in;
    size_t m_size;
    Bytes& m_out;
    int m_bits;
    HostVector<int32_t> m_head; // positions fit: the host counts sizes in 31 bits
    HostVector<int32_t> m_prev;
    size_t m_mask;
};

} // namespace

bool looksPacked(std::span<const uint8_t> data) {
    return data.size() >= 5 && data[1] == 0xFB && (data[0] & 0x7E) == 0x10;
}

size_t declaredSize(std::span<const uint8_t> data) {
    return readHeader(data).size;
}

Decoded decode(std::span<const uint8_t> data, size_t limit) {
    Header header = readHeader(data);
    checkPlausible(data, header, limit);
    Decoded result;
    result.bytes.assign(header.size, 0);
    result.consumed = run(data, header, result.bytes.data(), header.size, false);
    return result;
}

Measured measure(std::span<const uint8_t> data, size_t limit) {
    Header header = readHeader(data);
    checkPlausible(data, header, limit);
    return {header.size, run(data, header, nullptr, header.size, false)};
}

Bytes peek(std::span<const uint8_t> data, size_t count) {
    Header header = readHeader(data);
    if (header.size < count) fail("the RefPack stream holds only %zu bytes", header.size);
    Bytes out(count, 0);
    run(data, header, out.data(), count, true);
    return out;
}

Bytes encode(std::span<const uint8_t> data) {
    Bytes out;
    out.reserve(data.size() / 2 + 16);
    const size_t size = data.size();
    const bool wide = size > 0xFFFFFF;
    out.push_back(wide ? 0x90 : 0x10);
    out.push_back(0xFB);
    for (int shift = wide ? 24 : 16; shift >= 0; shift -= 8)
        out.push_back(static_cast<uint8_t>(size >> shift));
    Encoder(data, out).run();
    return out;
}

} // namespace tavix::refpack

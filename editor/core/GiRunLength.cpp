#include "core/GiRunLength.h"

#include "mc/McMemory.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr long kMaxPacket = 127;        // bytes of output that one packet carries
constexpr unsigned char kLiteral = 128; // flag in the control byte
constexpr long kMinCapacity = 16;       // growth by a factor needs something to start from

/// A stream under construction.
class Stream
{
public:
    explicit Stream(long size) { enlargeTo(std::max(kMinCapacity, 2 * (size / kMaxPacket))); }
    ~Stream() { std::free(buffer); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    /// Puts a run and returns how much of it: a single byte that is left over behind full packets is
    /// no run, but the first of the literals that follow.
    long putRun(long count, unsigned char value)
    {
        need(2 * (count / kMaxPacket + 1));
        long left = count;
        for (; left >= 2; left -= std::min(left, kMaxPacket)) {
            buffer[length++] = static_cast<unsigned char>(std::min(left, kMaxPacket));
            buffer[length++] = value;
        }
        return count - left;
    }
    void putLiterals(const unsigned char* bytes, long count)
    {
        need(count + 1);
        buffer[length++] = static_cast<unsigned char>(count | kLiteral);
        std::memcpy(buffer + length, bytes, static_cast<std::size_t>(count));
        length += count;
    }
    /// Closes the stream and hands it over, cut to its length.
    long finish(unsigned char*& stream)
    {
        need(1);
        buffer[length++] = 0;
        // Shrinking may fail only by a fault of the allocator; the larger block then serves as well.
        void* exact = std::realloc(buffer, static_cast<std::size_t>(length));
        stream = exact ? static_cast<unsigned char*>(exact) : buffer;
        buffer = nullptr;
        return length;
    }

private:
    void need(long bytes)
    {
        if (length + bytes <= capacity) return;
        long wanted = capacity;
        while (wanted < length + bytes) wanted += wanted / 2;
        enlargeTo(wanted);
    }
    void enlargeTo(long wanted)
    {
        void* larger = std::realloc(buffer, static_cast<std::size_t>(wanted));
        if (!larger) throw McMemoryException(static_cast<unsigned long>(wanted));
        buffer = static_cast<unsigned char*>(larger);
        capacity = wanted;
    }

    unsigned char* buffer = nullptr;
    long length = 0;
    long capacity = 0;
};

/// Where bytes equal their successors, as bits: byte i and byte i + 1 for bit i. All searches for
/// runs are made on these bits, so that the data is read once, in order.
class EqualNext
{
public:
    EqualNext(const unsigned char* bytes, long size)
    {
        const auto numWords = static_cast<unsigned long>(size / 64 + 2); // one more for the look ahead
        words = static_cast<std::uint64_t*>(mcAllocateZeroed(numWords * sizeof(std::uint64_t)));
        long i = 0;
#if defined(__SSE2__)
        for (; i + 65 <= size; i += 64) {
            for (int part = 0; part < 64; part += 16)
                words[i / 64] |= static_cast<std::uint64_t>(equalMask(bytes + i + part)) << part;
        }
#endif
        for (; i + 1 < size; ++i)
            words[i / 64] |= static_cast<std::uint64_t>(bytes[i] == bytes[i + 1]) << (i % 64);
    }
    ~EqualNext()
    {
        std::free(words);
    }
    EqualNext(const EqualNext&) = delete;
    EqualNext& operator=(const EqualNext&) = delete;

    /// One behind the last byte that continues the run at byte i; the last byte ends any run.
    long runEnd(long i) const
    {
        long k = i / 64;
        std::uint64_t ends = ~words[k] & ~std::uint64_t{0} << (i % 64);
        while (!ends) ends = ~words[++k];
        return k * 64 + std::countr_zero(ends) + 1;
    }
    /// The first byte from i on, and before `end`, where three equal ones begin; otherwise `end`.
    long findTriple(long i, long end) const
    {
        if (i >= end) return end;
        long k = i / 64;
        std::uint64_t begins = triples(k) & ~std::uint64_t{0} << (i % 64);
        while (!begins && (k + 1) * 64 < end) begins = triples(++k);
        return begins ? std::min(end, k * 64 + std::countr_zero(begins)) : end;
    }

private:
#if defined(__SSE2__)
    static unsigned int equalMask(const unsigned char* p)
    {
        const __m128i these = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
        return static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(these, next)));
    }
#endif
    std::uint64_t triples(long k) const
    {
        return words[k] & (words[k] >> 1 | words[k + 1] << 63);
    }

    std::uint64_t* words;
};

} // namespace

long giRunLengthEncode(const unsigned char* source, long size, unsigned char*& stream)
{
    Stream out(size);
    const EqualNext equalNext(source, size);
    long i = 0;
    while (i < size) {
        const long length = equalNext.runEnd(i) - i;
        if (length >= 2) {
            i += out.putRun(length, source[i]);
            continue;
        }
        const long end = equalNext.findTriple(i + 1, std::min(i + kMaxPacket, size));
        out.putLiterals(source + i, end - i);
        i = end;
    }
    return out.finish(stream);
}

void giRunLengthDecode(unsigned char* target, const unsigned char* stream, long room)
{
    const unsigned char* const end = target + room;
    for (;;) {
        const unsigned char control = *stream++;
        const std::size_t count = control & (kLiteral - 1);
        if (count == 0) return;
        if (control & kLiteral) {
            std::memcpy(target, stream, count);
            stream += count;
        } else if (end - target > kMaxPacket) {
            // A fixed length needs no decisions, which cost more than the bytes written in vain.
            std::memset(target, *stream++, kMaxPacket + 1);
        } else {
            std::memset(target, *stream++, count);
        }
        target += count;
    }
}

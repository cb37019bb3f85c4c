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
constexpr std::size_t kShortRun = 32;   // bytes of a run that decoding writes in any case

// Bytes whose run ends are found at a time: the bytes and the positions stay in the nearest cache.
constexpr long kBlock = 1024;
// The most that the short runs ending in one block take: two bytes for each run of two bytes or more,
// the first of which may have begun before.
constexpr long kBlockRoom = kBlock + 2;

/// Writes the packets of consecutive runs; runs too short for a packet gather to literals.
class PacketWriter
{
public:
    PacketWriter(const unsigned char* bytes, long size) : source(bytes)
    {
        enlargeTo(kBlockRoom + size / 16); // what a typical slice of labels takes
    }
    ~PacketWriter() { std::free(buffer); }
    PacketWriter(const PacketWriter&) = delete;
    PacketWriter& operator=(const PacketWriter&) = delete;

    /// Takes the runs that end in one block, given by the positions behind them. A run of one byte
    /// has the length 1.
    void addRuns(const long* ends, long count)
    {
        need(0);
        for (long k = 0; k < count;) {
            if (literals < 0) k = putShortRuns(ends, k, count);
            if (k < count) addRun(ends[k++]);
        }
    }
    /// Closes the stream and hands it over, cut to its length.
    long finish(unsigned char*& stream)
    {
        if (literals >= 0) putLiterals(start);
        need(1);
        buffer[length++] = 0;
        // Shrinking may fail only by a fault of the allocator; the larger block then serves as well.
        void* exact = std::realloc(buffer, static_cast<std::size_t>(length));
        stream = exact ? static_cast<unsigned char*>(exact) : buffer;
        buffer = nullptr;
        return length;
    }

private:
    /// Puts runs until one comes that is no single packet; returns its number. Label slices are
    /// mostly such runs, so there is one decision for each of them, and it goes one way.
    long putShortRuns(const long* ends, long k, long count)
    {
        unsigned char* to = buffer + length;
        long from = start;
        for (; k < count; ++k) {
            const long n = ends[k] - from;
            if (n < 2 || n > kMaxPacket) break;
            to[0] = static_cast<unsigned char>(n);
            to[1] = source[from];
            to += 2;
            from = ends[k];
        }
        start = from;
        length = to - buffer;
        return k;
    }
    /// Takes the run from `start` to `end`.
    void addRun(long end)
    {
        if (literals >= 0) {
            if (end - start <= 2) {
                addToLiterals(end);
                return;
            }
            putLiterals(start);
        }
        while (end - start >= 2) putRun(std::min(end - start, kMaxPacket));
        // A single byte that is left over behind full packets is no run, but the first of the
        // literals that follow.
        if (start < end) literals = start;
        start = end;
    }
    void addToLiterals(long end)
    {
        if (end - literals > kMaxPacket) {
            // A pair that begins behind a full packet is a run, while one that is cut by it goes on
            // as a literal.
            const long cut = literals + kMaxPacket;
            putLiterals(cut);
            start = cut;
            if (end - cut == 2)
                putRun(2);
            else
                literals = cut;
        }
        start = end;
    }

    void putRun(long count)
    {
        need(2);
        buffer[length++] = static_cast<unsigned char>(count);
        buffer[length++] = source[start];
        start += count;
    }
    /// Puts the gathered literals up to `end`.
    void putLiterals(long end)
    {
        const long count = end - literals;
        need(count + 1);
        buffer[length++] = static_cast<unsigned char>(count | kLiteral);
        std::memcpy(buffer + length, source + literals, static_cast<std::size_t>(count));
        length += count;
        literals = -1;
    }
    /// Makes room for `bytes`, and behind them for the short runs of a block.
    void need(long bytes)
    {
        if (length + bytes + kBlockRoom <= capacity) return;
        enlargeTo((length + bytes + kBlockRoom) * 3 / 2);
    }
    void enlargeTo(long wanted)
    {
        void* larger = std::realloc(buffer, static_cast<std::size_t>(wanted));
        if (!larger) throw McMemoryException(static_cast<unsigned long>(wanted));
        buffer = static_cast<unsigned char*>(larger);
        capacity = wanted;
    }

    const unsigned char* source;
    long start = 0;     // of the run that is still open
    long literals = -1; // where those begin that are not written yet; -1: there are none
    unsigned char* buffer = nullptr;
    long length = 0;
    long capacity = 0;
};

/// Of 64 bytes those that differ from their successors, as bits. Reads 65 bytes.
std::uint64_t differsFromNext(const unsigned char* bytes)
{
    std::uint64_t equal = 0;
#if defined(__SSE2__)
    for (int part = 0; part < 64; part += 16) {
        const __m128i these = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + part));
        const __m128i next = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + part + 1));
        const auto mask = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(these, next)));
        equal |= static_cast<std::uint64_t>(mask) << part;
    }
#else
    for (int k = 0; k < 64; ++k) equal |= static_cast<std::uint64_t>(bytes[k] == bytes[k + 1]) << k;
#endif
    return ~equal;
}

/// Writes the positions behind the runs that end in the block from `first` on, and returns how many.
/// The last byte of all ends any run.
long findRunEnds(const unsigned char* bytes, long size, long first, long* ends)
{
    const long end = std::min(first + kBlock, size);
    long* next = ends;
    long i = first;
    for (; i + 64 <= end && i + 64 < size; i += 64) {
        __builtin_prefetch(bytes + i + 2 * kBlock); // the walk is bound by memory; this saves 5 %
        std::uint64_t last = differsFromNext(bytes + i);
        // Up to four without a decision, which would be a toss-up where labels are busy.
        for (int k = 0; k < 4; ++k) {
            *next = i + std::countr_zero(last) + 1;
            next += last != 0;
            last &= last - 1;
        }
        for (; last; last &= last - 1) *next++ = i + std::countr_zero(last) + 1;
    }
    for (; i < end; ++i)
        if (i + 1 == size || bytes[i] != bytes[i + 1]) *next++ = i + 1;
    return next - ends;
}

} // namespace

long giRunLengthEncode(const unsigned char* source, long size, unsigned char*& stream)
{
    PacketWriter out(source, size);
    long ends[kBlock + 1]; // the search writes one beyond what it keeps
    for (long first = 0; first < size; first += kBlock)
        out.addRuns(ends, findRunEnds(source, size, first, ends));
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
            // Fixed lengths, since a length of its own for each run costs more than the bytes written
            // in vain. Most runs of labels fit into the first part.
            const unsigned char value = *stream++;
            std::memset(target, value, kShortRun);
            if (count > kShortRun) std::memset(target + kShortRun, value, kMaxPacket + 1 - kShortRun);
        } else {
            std::memset(target, *stream++, count);
        }
        target += count;
    }
}

#include "core/GiRunLength.h"

#include "mc/McMemoryException.h"

#include <algorithm>
#include <bit>
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

    void putRun(long count, unsigned char value)
    {
        need(2);
        buffer[length++] = static_cast<unsigned char>(count);
        buffer[length++] = value;
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

#if defined(__SSE2__)

__m128i load16(const unsigned char* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

/// Bit i tells that byte i of both is equal.
unsigned int equalMask(__m128i a, __m128i b)
{
    return static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
}

#endif

/// The first index from `i` on whose byte is not `value`, or `size`.
long findOther(const unsigned char* s, long i, long size, unsigned char value)
{
#if defined(__SSE2__)
    const __m128i wanted = _mm_set1_epi8(static_cast<char>(value));
    for (; i + 64 <= size; i += 64) {
        const __m128i a = _mm_cmpeq_epi8(load16(s + i), wanted);
        const __m128i b = _mm_cmpeq_epi8(load16(s + i + 16), wanted);
        const __m128i c = _mm_cmpeq_epi8(load16(s + i + 32), wanted);
        const __m128i d = _mm_cmpeq_epi8(load16(s + i + 48), wanted);
        if (_mm_movemask_epi8(_mm_and_si128(_mm_and_si128(a, b), _mm_and_si128(c, d))) != 0xFFFF) break;
    }
    for (; i + 16 <= size; i += 16) {
        const unsigned int equal = equalMask(load16(s + i), wanted);
        if (equal != 0xFFFF) return i + std::countr_one(equal);
    }
#endif
    while (i < size && s[i] == value) ++i;
    return i;
}

/// The first index from `i` on at which three equal bytes begin, at most `end`; `size` bytes may be
/// looked at.
long findTriple(const unsigned char* s, long i, long end, long size)
{
#if defined(__SSE2__)
    for (; i < end && i + 18 <= size; i += 16) {
        const __m128i middle = load16(s + i + 1);
        const unsigned int triples = equalMask(load16(s + i), middle) & equalMask(middle, load16(s + i + 2));
        if (triples) return std::min(end, i + std::countr_zero(triples));
    }
#endif
    while (i < end && !(i + 2 < size && s[i] == s[i + 1] && s[i + 1] == s[i + 2])) ++i;
    return std::min(i, end);
}

} // namespace

long giRunLengthEncode(const unsigned char* source, long size, unsigned char*& stream)
{
    Stream out(size);
    long i = 0;
    while (i < size) {
        const long runEnd = findOther(source, i + 1, size, source[i]);
        if (runEnd - i >= 2) {
            // A long run becomes full packets; what is left over is a run only if it is a pair at
            // least, and otherwise the first byte of the literals that follow.
            long left = runEnd - i;
            for (; left >= 2; left -= std::min(left, kMaxPacket))
                out.putRun(std::min(left, kMaxPacket), source[i]);
            i = runEnd - left;
            continue;
        }
        const long end = findTriple(source, i + 1, std::min(i + kMaxPacket, size), size);
        out.putLiterals(source + i, end - i);
        i = end;
    }
    return out.finish(stream);
}

void giRunLengthDecode(unsigned char* target, const unsigned char* stream)
{
    for (;;) {
        const unsigned char control = *stream++;
        const std::size_t count = control & (kLiteral - 1);
        if (count == 0) return;
        if (control & kLiteral) {
            std::memcpy(target, stream, count);
            stream += count;
        } else {
            std::memset(target, *stream++, count);
        }
        target += count;
    }
}

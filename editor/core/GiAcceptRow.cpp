#include "core/GiAcceptRow.h"

#include "mc/McSimd.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

template <class T>
[[gnu::always_inline]] inline void acceptWindow(const T* values, unsigned long n, T min, T max,
                                                unsigned char* __restrict accepted)
{
    for (unsigned long i = 0; i < n; ++i)
        accepted[i] = static_cast<unsigned char>(-((values[i] >= min) & (values[i] <= max)));
}

} // namespace

MC_TARGET_CLONES
void giAcceptWindow(const unsigned char* values, unsigned long n, unsigned char min, unsigned char max,
                    unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const short* values, unsigned long n, short min, short max, unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const unsigned short* values, unsigned long n, unsigned short min, unsigned short max,
                    unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const int* values, unsigned long n, int min, int max, unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const unsigned int* values, unsigned long n, unsigned int min, unsigned int max,
                    unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const float* values, unsigned long n, float min, float max, unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giAcceptWindow(const double* values, unsigned long n, double min, double max, unsigned char* accepted)
{
    acceptWindow(values, n, min, max, accepted);
}

MC_TARGET_CLONES
void giRefuseOtherLabels(const unsigned char* labels, unsigned long n, unsigned char label,
                         unsigned char* __restrict accepted)
{
    for (unsigned long i = 0; i < n; ++i)
        accepted[i] = static_cast<unsigned char>(accepted[i] & -(labels[i] == label));
}

void giPackAccepted(const unsigned char* accepted, unsigned long n, std::uint64_t* words)
{
    for (unsigned long i = 0; i < n; ++i) {
        const unsigned char* bytes = accepted + i * 64;
        std::uint64_t word = 0;
#if defined(__SSE2__)
        for (int k = 0; k < 4; ++k) {
            const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 16 * k));
            word |= static_cast<std::uint64_t>(static_cast<unsigned int>(_mm_movemask_epi8(part)))
                    << (16 * k);
        }
#else
        for (int k = 0; k < 64; ++k) word |= static_cast<std::uint64_t>(bytes[k] & 1) << k;
#endif
        words[i] = word;
    }
}

void giAcceptWindowBits(const float* values, unsigned long n, float min, float max, std::uint64_t* words)
{
    unsigned long i = 0;
#if defined(__SSE2__)
    const __m128 low = _mm_set1_ps(min), high = _mm_set1_ps(max);
    for (; i + 64 <= n; i += 64) {
        std::uint64_t word = 0;
        for (unsigned long k = 0; k < 64; k += 4) {
            const __m128 four = _mm_loadu_ps(values + i + k);
            const __m128 inside = _mm_and_ps(_mm_cmpge_ps(four, low), _mm_cmple_ps(four, high));
            word |= static_cast<std::uint64_t>(static_cast<unsigned int>(_mm_movemask_ps(inside))) << k;
        }
        words[i / 64] = word;
    }
#endif
    for (; i < n; ++i) {
        if (i % 64 == 0) words[i / 64] = 0;
        if (values[i] >= min && values[i] <= max) words[i / 64] |= std::uint64_t{1} << (i % 64);
    }
}

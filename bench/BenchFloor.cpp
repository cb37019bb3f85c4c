#include "BenchFloor.h"

#include "mc/McSimd.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using Word = std::uint64_t __attribute__((may_alias));

MC_TARGET_CLONES Word sumOf(const Word* words, unsigned long n)
{
    // Four sums: one alone would wait for its own last addition.
    Word sums[4] = {};
    unsigned long i = 0;
    for (; i + 4 <= n; i += 4)
        for (unsigned long k = 0; k < 4; ++k) sums[k] += words[i + k];
    for (; i < n; ++i) sums[0] += words[i];
    return sums[0] + sums[1] + sums[2] + sums[3];
}

MC_TARGET_CLONES void flip(Word* words, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) words[i] = ~words[i];
}

/// Runs step(first, end) on one chunk of [0, words) per thread.
template <class Step>
void forEachChunk(unsigned long bytes, int threads, const Step& step)
{
    const unsigned long words = bytes / sizeof(Word);
    const unsigned long chunk =
        (words + static_cast<unsigned long>(threads) - 1) / static_cast<unsigned long>(threads);
#pragma omp parallel for num_threads(threads) schedule(static, 1)
    for (int part = 0; part < threads; ++part) {
        const unsigned long first = std::min(words, static_cast<unsigned long>(part) * chunk);
        step(first, std::min(words, first + chunk));
    }
}

} // namespace

void benchRead(const void* memory, unsigned long bytes, int threads)
{
    forEachChunk(bytes, threads, [&](unsigned long first, unsigned long end) {
        // The sum must go somewhere, or the compiler reads nothing.
        [[maybe_unused]] volatile Word sink = sumOf(static_cast<const Word*>(memory) + first, end - first);
    });
}

void benchWrite(void* memory, unsigned long bytes, int threads)
{
    forEachChunk(bytes, threads, [&](unsigned long first, unsigned long end) {
        std::memset(static_cast<Word*>(memory) + first, 0x55, (end - first) * sizeof(Word));
    });
}

void benchCopy(void* target, const void* source, unsigned long bytes, int threads)
{
    forEachChunk(bytes, threads, [&](unsigned long first, unsigned long end) {
        std::memcpy(static_cast<Word*>(target) + first, static_cast<const Word*>(source) + first,
                    (end - first) * sizeof(Word));
    });
}

void benchUpdate(void* memory, unsigned long bytes, int threads)
{
    forEachChunk(bytes, threads, [&](unsigned long first, unsigned long end) {
        flip(static_cast<Word*>(memory) + first, end - first);
    });
}

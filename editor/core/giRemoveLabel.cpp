#include "core/giRemoveLabel.h"

#include "mc/McSimd.h"

#include <algorithm>

namespace {

// Two pages: what the first look has brought into the cache is still there for the second.
constexpr unsigned long kBlock = 8192;

MC_TARGET_CLONES unsigned char largest(const unsigned char* labels, unsigned long n)
{
    unsigned char most = 0;
    for (unsigned long k = 0; k < n; ++k) most = std::max(most, labels[k]);
    return most;
}

MC_TARGET_CLONES void rewrite(unsigned char* labels, unsigned long n, unsigned char removed,
                              unsigned char replacement)
{
    for (unsigned long k = 0; k < n; ++k) {
        const unsigned char v = labels[k];
        const auto lowered = static_cast<unsigned char>(v - (v > removed));
        labels[k] = v == removed ? replacement : lowered;
    }
}

} // namespace

void giRemoveLabel(unsigned char* labels, unsigned long sliceSize, unsigned long slices, int removed,
                   int replacement, int threads)
{
    const auto i = static_cast<unsigned char>(removed);
    const auto r = static_cast<unsigned char>(replacement);
    const auto n = static_cast<long>(slices);
    const long chunk = std::max(1l, (n + threads - 1) / threads);
#pragma omp parallel for num_threads(threads) schedule(static, chunk)
    for (long s = 0; s < n; ++s) {
        unsigned char* const slice = labels + sliceSize * static_cast<unsigned long>(s);
        for (unsigned long k = 0; k < sliceSize; k += kBlock) {
            const unsigned long count = std::min(kBlock, sliceSize - k);
            // Most of a volume is background: what stays as it is need not go back to memory.
            if (largest(slice + k, count) >= i) rewrite(slice + k, count, i, r);
        }
    }
}

#include "tools/giSelectWindow.h"

#include "core/GiAcceptRow.h"
#include "core/GiMask.h"
#include "core/GiValueWindow.h"
#include "mc/McBitfield.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr unsigned long kBlock = 4096; // voxels; flags and words of a block stay in the first cache

template <class T>
void selectWindow(const T* values, const float* ends, const unsigned char* labels, int label,
                  McBitfield& selected, int threads)
{
    const GiValueWindow<T> window(ends);
    if (window.isEmpty || (labels && (label < 0 || label > 255))) {
        selected.unsetAll();
        return;
    }
    const unsigned long numVoxels = selected.numBits();
    const auto numBlocks = static_cast<long>((numVoxels + kBlock - 1) / kBlock);
    // The length of a block is a multiple of 64, so no word belongs to two threads.
#pragma omp parallel for num_threads(threads) schedule(static)
    for (long block = 0; block < numBlocks; ++block) {
        alignas(64) unsigned char flags[kBlock];
        std::uint64_t words[kBlock / 64];
        const unsigned long first = static_cast<unsigned long>(block) * kBlock;
        const unsigned long n = std::min(kBlock, numVoxels - first), numWords = (n + 63) / 64;
        std::fill(flags + n, flags + 64 * numWords, static_cast<unsigned char>(0)); // padding stays clear
        giAcceptWindow(values + first, n, window.min, window.max, flags);
        if (labels) giRefuseOtherLabels(labels + first, n, static_cast<unsigned char>(label), flags);
        giPackAccepted(flags, numWords, words);
        std::copy_n(words, numWords, selected.words64() + first / 64);
    }
}

} // namespace

void giSelectWindow(int primType, const void* values, const float* window, const unsigned char* labels,
                    int label, McBitfield& selected, int threads)
{
    giDispatchImage(primType, values, [&](const auto* elements) {
        selectWindow(elements, window, labels, label, selected, threads);
    });
}

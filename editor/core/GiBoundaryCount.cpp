#include "core/GiBoundaryCount.h"

#include "core/GiBitRows.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#define GI_HAS_AVX2 1
#include <immintrin.h>
#endif

namespace {

constexpr int kSides = 6;

bool hasAvx2()
{
#if defined(GI_HAS_AVX2)
    static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt");
    return has;
#else
    return false;
#endif
}

void countEach(std::uint64_t voxels, const unsigned char* neighbours, GiLabelHistogram& histogram)
{
    for (; voxels; voxels &= voxels - 1) ++histogram.counts[neighbours[std::countr_zero(voxels)]];
}

#if defined(GI_HAS_AVX2)

/// Of 64 labels those that equal `label`.
__attribute__((target("avx2"))) inline std::uint64_t equalBits(const unsigned char* labels, __m256i label)
{
    const auto* const at = reinterpret_cast<const __m256i*>(labels);
    const int low = _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_loadu_si256(at), label));
    const int high = _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_loadu_si256(at + 1), label));
    return static_cast<unsigned int>(low) | static_cast<std::uint64_t>(static_cast<unsigned int>(high)) << 32;
}

#endif

} // namespace

void GiLabelHistogram::add(const GiLabelHistogram& other)
{
    for (int label = 0; label < 256; ++label) counts[label] += other.counts[label];
}

int GiLabelHistogram::mostFrequentBut(int tissue) const
{
    int best = -1;
    unsigned long bestCount = 0;
    for (int label = 0; label < 256; ++label) {
        if (label == tissue || counts[label] <= bestCount) continue;
        best = label;
        bestCount = counts[label];
    }
    return best;
}

GiBoundaryCount::GiBoundaryCount(const McBitfield& set, const unsigned char* volume,
                                 const unsigned long* dims)
    : bits(set), labels(volume), nx(dims[0]), ny(dims[1]), nz(dims[2]), plane(dims[0] * dims[1])
{
}

void GiBoundaryCount::countRows(unsigned long firstRow, unsigned long endRow,
                                GiLabelHistogram& histogram) const
{
    Seen seen;
    const unsigned long end = endRow * nx;
    unsigned long at = giFindSet(bits.words(), firstRow * nx, end);
    while (at < end) {
        const unsigned long row = at / nx;
        countRow(row, histogram, seen);
        at = giFindSet(bits.words(), (row + 1) * nx, end);
    }
}

void GiBoundaryCount::countRow(unsigned long row, GiLabelHistogram& histogram, Seen& seen) const
{
    const unsigned long y = row % ny, z = row / ny;
    for (unsigned long x = 0; x < nx; x += 64) {
        const unsigned long at = row * nx + x;
        const unsigned long n = std::min(64ul, nx - x);
        const std::uint64_t set = bits.load64(at) & ~std::uint64_t{0} >> (64 - n);
        if (!set) continue;
        const bool isFirst = x == 0, isLast = x + n == nx;
        const std::uint64_t before = set << 1 | static_cast<std::uint64_t>(isFirst || bits.isSet(at - 1));
        const std::uint64_t behind = set >> 1 | static_cast<std::uint64_t>(isLast || bits.isSet(at + n))
                                                    << (n - 1);
        const Side sides[kSides] = {
            {z > 0 ? set & ~bits.load64(at - plane) : 0, labels + at - plane},
            {z + 1 < nz ? set & ~bits.load64(at + plane) : 0, labels + at + plane},
            {y > 0 ? set & ~bits.load64(at - nx) : 0, labels + at - nx},
            {y + 1 < ny ? set & ~bits.load64(at + nx) : 0, labels + at + nx},
            {set & ~before, labels + at - 1},
            {set & ~behind, labels + at + 1},
        };
        // Vectors read 64 labels on each side, whether they count or not.
        const bool canReadAll = at > plane && at + plane + 65 <= plane * nz;
        if (canReadAll && hasAvx2())
            countSidesAvx2(sides, histogram, seen);
        else
            countSides(sides, histogram);
    }
}

void GiBoundaryCount::countSides(const Side* sides, GiLabelHistogram& histogram)
{
    for (int i = 0; i < kSides; ++i) countEach(sides[i].voxels, sides[i].neighbours, histogram);
}

#if defined(GI_HAS_AVX2)

/// Counts the two labels seen last without a decision per voxel: a border mostly runs between few
/// materials. What is left is counted one by one.
__attribute__((target("avx2,popcnt"))) void
GiBoundaryCount::countSidesAvx2(const Side* sides, GiLabelHistogram& histogram, Seen& seen)
{
    std::uint64_t anySide = 0;
    for (int i = 0; i < kSides; ++i) anySide |= sides[i].voxels;
    if (!anySide) return; // inside the set

    const __m256i latest = _mm256_set1_epi8(static_cast<char>(seen.latest));
    const __m256i former = _mm256_set1_epi8(static_cast<char>(seen.former));
    unsigned long numLatest = 0, numFormer = 0;
    std::uint64_t others[kSides], anyOther = 0;
    for (int i = 0; i < kSides; ++i) {
        const std::uint64_t isLatest = sides[i].voxels & equalBits(sides[i].neighbours, latest);
        const std::uint64_t isFormer = sides[i].voxels & equalBits(sides[i].neighbours, former);
        numLatest += static_cast<unsigned long>(__builtin_popcountll(isLatest));
        numFormer += static_cast<unsigned long>(__builtin_popcountll(isFormer));
        others[i] = sides[i].voxels & ~isLatest & ~isFormer;
        anyOther |= others[i];
    }
    histogram.counts[seen.latest] += numLatest;
    histogram.counts[seen.former] += numFormer;
    if (!anyOther) return;
    for (int i = 0; i < kSides; ++i) {
        if (!others[i]) continue;
        countEach(others[i], sides[i].neighbours, histogram);
        const unsigned char label = sides[i].neighbours[std::countr_zero(others[i])];
        // The two stay different, or a label would be counted twice.
        if (label != seen.latest && label != seen.former) seen = {label, seen.latest};
    }
}

#else

void GiBoundaryCount::countSidesAvx2(const Side* sides, GiLabelHistogram& histogram, Seen&)
{
    countSides(sides, histogram);
}

#endif

#include "tools/IScissors.h"

#include <array>
#include <bit>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>

#include <cstring>
#endif

// Dijkstra's algorithm over the ring of buckets, in two steps that alternate:
//
// - A batch of pixels of the lowest cost is taken from their bucket. That reads what lies scattered in memory
//   for all of them at once, and leaves the passed-over entries behind.
// - Each pixel of the batch is expanded: a mask tells which of its neighbours get cheaper by it, and these go
//   into the queue.
//
// The order in which pixels of the same cost are expanded, and the order of the neighbours, decide between
// paths of the same cost: the latest entry of a bucket comes first, and of equal paths the older one stays.

namespace {

constexpr int kSteps = 8;
/// The class of each step, in the order in which neighbours are looked at.
constexpr int kDirection[kSteps] = {0, 2, 1, 3, 0, 2, 1, 3};

#if defined(__SSE2__)
// The neighbourhood as three rows of three pixels and one that is not used: above, the pixel's own, below.
constexpr int kLane[kSteps] = {6, 10, 9, 8, 4, 0, 1, 2}; // by step

/// Turns a mask of three bits for each row into one in the order of the steps; the middle bit is dropped.
constexpr std::array<unsigned char, 512> makeStepMasks()
{
    std::array<unsigned char, 512> masks{};
    for (unsigned int lanes = 0; lanes < 512; ++lanes)
        for (unsigned int step = 0; step < kSteps; ++step) {
            const int row = kLane[step] / 4, column = kLane[step] % 4;
            if (lanes >> (3 * row + column) & 1) masks[lanes] |= static_cast<unsigned char>(1u << step);
        }
    return masks;
}
constexpr std::array<unsigned char, 512> kStepMasks = makeStepMasks();

/// Four bytes as four numbers.
__m128i loadBytes(const unsigned char* bytes)
{
    int four;
    std::memcpy(&four, bytes, sizeof four);
    const __m128i zero = _mm_setzero_si128();
    return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero), zero);
}

unsigned int firstThree(__m128i condition)
{
    return static_cast<unsigned int>(_mm_movemask_ps(_mm_castsi128_ps(condition))) & 7u;
}

/// The steps from a pixel to its neighbours where the image is the cost.
struct ImageRows
{
    ImageRows(const unsigned char* pixel, int width)
        : own(_mm_set1_epi32(*pixel)),
          above(loadBytes(pixel - width - 1)),
          beside(loadBytes(pixel - 1)),
          below(loadBytes(pixel + width - 1))
    {
    }
    static constexpr bool isMissing() { return false; }
    __m128i stepsAbove() const { return mean(above); }
    __m128i stepsBeside() const { return mean(beside); }
    __m128i stepsBelow() const { return mean(below); }

private:
    __m128i mean(__m128i row) const { return _mm_srai_epi32(_mm_add_epi32(own, row), 1); }

    __m128i own, above, beside, below;
};

/// The same where a path follows edges.
struct EdgeRows
{
    EdgeRows(const unsigned char* pixel, int width)
        : above(flatness(pixel - width - 1)), beside(flatness(pixel - 1)), below(flatness(pixel + width - 1))
    {
    }
    /// Whether a gradient has not been computed yet: its flatness is negative.
    bool isMissing() const { return firstThree(_mm_or_si128(_mm_or_si128(above, beside), below)) != 0; }
    // Axial steps count 182 / 256 of diagonal ones.
    __m128i stepsAbove() const { return scaled(above, _mm_setr_epi32(256, 182, 256, 0)); }
    __m128i stepsBeside() const { return scaled(beside, _mm_setr_epi32(182, 0, 182, 0)); }
    __m128i stepsBelow() const { return scaled(below, _mm_setr_epi32(256, 182, 256, 0)); }

private:
    static __m128i flatness(const unsigned char* row)
    {
        return _mm_sub_epi32(_mm_set1_epi32(254), loadBytes(row));
    }
    // Both factors fit in 16 bits, of which the upper ones are 0 where it counts.
    static __m128i scaled(__m128i row, __m128i by) { return _mm_srai_epi32(_mm_madd_epi16(row, by), 8); }

    __m128i above, beside, below;
};
#endif

} // namespace

/// A run of the search, which holds what it needs itself: for all that the compiler knows, a byte that is
/// written could be part of any field of the engine. For the same reason its address goes nowhere.
struct IScissors::Search
{
    explicit Search(IScissors& engine)
        : scissors(engine),
          soFar(engine.soFar),
          back(engine.back),
          entries(engine.entries),
          buckets(engine.buckets),
          width(engine.width),
          now(engine.currentCost),
          freeEntry(engine.freeEntry),
          usedEntries(engine.usedEntries)
    {
        for (int step = 0; step < kSteps; ++step) stepTo[step] = engine.stepTo[step];
    }

    /// Expands pixels until the target is among them. Returns 0 if the queue runs empty before.
    template <class Rows>
    int run(int target)
    {
        int found = 0;
        while (!found && findBucket()) found = expandBatch<Rows>(target);
        scissors.currentCost = now;
        scissors.freeEntry = freeEntry;
        scissors.usedEntries = usedEntries;
        return found;
    }

private:
    static constexpr int kLargestBatch = 64;

    int& bucketOf(int pathCost) { return buckets[pathCost & (kBuckets - 1)]; }

    bool findBucket()
    {
        for (int looked = 0; looked < kBuckets; ++looked, ++now)
            if (bucketOf(now) >= 0) return true;
        return false;
    }

    template <class Rows>
    int expandBatch(int target)
    {
        takeBatch();
        int& bucket = bucketOf(now);
        const int rest = bucket;
        for (int i = 0; i < batchSize; ++i) {
            const int index = batch[i];
            expand<Rows>(index);
            // A step that costs nothing has its turn before the rest of the batch. Where there is one there
            // are more, as in a saturated area, so the next batches are small.
            const bool isOvertaken = bucket != rest;
            if (index != target && !isOvertaken) continue;
            putBack(i + 1, rest);
            batchLimit = isOvertaken ? 1 : batchLimit;
            return index == target;
        }
        if (batchLimit < kLargestBatch) batchLimit *= 2;
        return 0;
    }

    void takeBatch()
    {
        int& bucket = bucketOf(now);
        int entry = bucket;
        batchSize = 0;
        do {
            const auto [index, next] = entries[entry];
            entries[entry].next = freeEntry;
            freeEntry = entry;
            entry = next;
            // Entries that were passed over make no branch: no one could foresee it.
            batch[batchSize] = index;
            batchSize += soFar[index] == now;
            soFar[index] = kFinished;
            prefetchAround(index);
        } while (entry >= 0 && batchSize < batchLimit);
        bucket = entry;
    }

    void prefetchAround(int index) const
    {
        __builtin_prefetch(soFar + index - width);
        __builtin_prefetch(soFar + index + width);
        __builtin_prefetch(scissors.cost + index - width);
        __builtin_prefetch(scissors.cost + index + width);
    }

    /// Undoes takeBatch for the pixels from `first` on: their place is behind the entries that have come
    /// since, and before `rest`.
    void putBack(int first, int rest)
    {
        int* link = &bucketOf(now);
        while (*link != rest) link = &entries[*link].next;
        for (int i = first; i < batchSize; ++i) {
            const int entry = takeEntry();
            entries[entry] = {batch[i], rest};
            soFar[batch[i]] = now;
            *link = entry;
            link = &entries[entry].next;
        }
    }

    template <class Rows>
    void expand(int index)
    {
        if constexpr (std::is_void_v<Rows>)
            expandPlainly(index);
        else
            expandByRows<Rows>(index);
    }

    /// Any cost type, and any pixel: a seed may lie on the border.
    void expandPlainly(int index)
    {
        if (scissors.costType != kImageAsCost) scissors.computeGradientsAround(index);
        for (int step = 0; step < kSteps; ++step) {
            const int to = index + stepTo[step];
            if (!scissors.isInside(to) || soFar[to] < 0) continue;
            const int pathCost = now + scissors.getCost(index, to, kDirection[step]);
            if (pathCost < soFar[to]) insert(to, step, pathCost);
        }
    }

#if defined(__SSE2__)
    template <class Rows>
    void expandByRows(int index)
    {
        Rows rows(scissors.cost + index, width);
        if (rows.isMissing()) [[unlikely]] {
            scissors.computeGradientsAround(index);
            rows = Rows(scissors.cost + index, width);
        }
        alignas(16) int pathCost[12];
        const int* const own = soFar + index;
        const unsigned int above = compareRow(rows.stepsAbove(), own - width - 1, pathCost),
                           beside = compareRow(rows.stepsBeside(), own - 1, pathCost + 4),
                           below = compareRow(rows.stepsBelow(), own + width - 1, pathCost + 8);
        for (unsigned int cheaper = kStepMasks[above | beside << 3 | below << 6]; cheaper;
             cheaper &= cheaper - 1) {
            const int step = std::countr_zero(cheaper);
            insert(index + stepTo[step], step, pathCost[kLane[step]]);
        }
    }

    /// Which pixels of a row get cheaper by this way, and their costs then.
    unsigned int compareRow(__m128i steps, const int* row, int* pathCost) const
    {
        const __m128i costs = _mm_add_epi32(_mm_set1_epi32(now), steps);
        _mm_store_si128(reinterpret_cast<__m128i*>(pathCost), costs);
        return firstThree(_mm_cmplt_epi32(costs, _mm_loadu_si128(reinterpret_cast<const __m128i*>(row))));
    }
#endif

    void insert(int index, int step, int pathCost)
    {
        const int entry = takeEntry();
        int& bucket = bucketOf(pathCost);
        entries[entry] = {index, bucket};
        bucket = entry;
        soFar[index] = pathCost;
        back[index] = static_cast<unsigned char>(step);
    }

    int takeEntry()
    {
        if (freeEntry < 0) return usedEntries++;
        const int entry = freeEntry;
        freeEntry = entries[entry].next;
        return entry;
    }

    IScissors& scissors;
    int* const soFar;
    unsigned char* const back;
    Entry* const entries;
    int* const buckets;
    const int width;
    int stepTo[kSteps];
    int now; // the lowest cost in the queue
    int freeEntry, usedEntries;
    int batch[kLargestBatch];
    int batchSize = 0, batchLimit = kLargestBatch;
};

int IScissors::reallyCompute(int target)
{
    if (currentCost < 0) return 0; // the trace has ended
#if defined(__SSE2__)
    // The seed may lie on the border, where there are no whole rows around it; no other pixel does.
    if (soFar[seedIndex] >= 0 && Search(*this).run<void>(seedIndex) && target == seedIndex) return 1;
    if (costType == kImageAsCost) return Search(*this).run<ImageRows>(target);
    if (costType != kFollowAlongEdge) return Search(*this).run<EdgeRows>(target);
#endif
    return Search(*this).run<void>(target);
}

#include "mc/McHistogram.h"

#include "mc/McRawData.h"
#include "mc/McThreads.h"

#include <algorithm>
#include <limits>

namespace {

struct Bins
{
    double low, high;
    int number;

    int of(double value) const
    {
        // Halved, since the difference of two doubles need not be one.
        const double span = high / 2 - low / 2;
        if (!(span > 0)) return 0;
        return std::min(int((value / 2 - low / 2) / span * number), number - 1);
    }
};

// Each thread counts a part of the array for itself. `cellOf` gives the cell of a value, or -1 for none.
template <class T, class CellOf>
McDArray<unsigned long> countInParts(const T* data, unsigned long n, int cells, CellOf cellOf)
{
    const int parts = mcNumThreadsFor(n * sizeof(T));
    McDArray<McDArray<unsigned long>> counts(parts);
    for (McDArray<unsigned long>& part : counts) part.resize(cells);
#pragma omp parallel for num_threads(parts) schedule(static)
    for (int p = 0; p < parts; p++) {
        unsigned long* own = counts[p].data();
        const T* end = data + n / parts * (p + 1) + (p + 1 == parts ? n % parts : 0);
        for (const T* v = data + n / parts * p; v < end; v++) {
            const int cell = cellOf(*v);
            if (cell >= 0) own[cell]++;
        }
    }
    for (int p = 1; p < parts; p++)
        for (int cell = 0; cell < cells; cell++) counts[0][cell] += counts[p][cell];
    return counts[0];
}

// Short elements: counting each value apart and sharing the counts out afterwards needs no arithmetic per
// voxel.
template <class T>
McDArray<unsigned long> countByValue(const T* data, unsigned long n, const Bins& bins)
{
    constexpr int kFirst = std::numeric_limits<T>::min();
    const McDArray<unsigned long> perValue =
        countInParts(data, n, 1 << (8 * sizeof(T)), [](T v) { return int(v) - kFirst; });
    McDArray<unsigned long> counts(bins.number);
    for (int v = 0; v < perValue.size(); v++)
        if (perValue[v]) counts[bins.of(v + kFirst)] += perValue[v];
    return counts;
}

template <class T>
McDArray<unsigned long> countEach(const T* data, unsigned long n, const Bins& bins)
{
    return countInParts(data, n, bins.number, [bins](T value) {
        const double v = double(value);
        return v >= bins.low && v <= bins.high ? bins.of(v) : -1;
    });
}

template <class T>
int numberOfBins(int wanted, double low, double high)
{
    // kept: one bin for a constant array of reals, too, although bins were asked for: there is no width to
    // divide, and the other bins would have ranges that hold nothing.
    if (low == high) return 1;
    if (std::is_integral_v<T> && high - low + 1 < wanted) return int(high - low) + 1;
    return wanted;
}

} // namespace

McHistogram::McHistogram(const McTypedPointer& data, unsigned long count, int bins)
{
    if (bins < 1 || !McRawData::getRange(data.data(), count, low, high, data.type())) {
        low = high = 0;
        return;
    }
    mcDispatch(data.type(), [&](auto* tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        const Bins layout{low, high, numberOfBins<T>(bins, low, high)};
        const T* values = static_cast<const T*>(data.data());
        if constexpr (sizeof(T) <= 2)
            counts = countByValue(values, count, layout);
        else
            counts = countEach(values, count, layout);
    });
}

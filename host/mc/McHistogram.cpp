#include "mc/McHistogram.h"

#include "mc/McRawData.h"

#include <algorithm>
#include <cmath>
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

// Short elements: counting each value apart and sharing the counts out afterwards needs no arithmetic per
// voxel.
template <class T>
void countByValue(const T* data, unsigned long n, const Bins& bins, McDArray<unsigned long>& counts)
{
    constexpr int kFirst = std::numeric_limits<T>::min();
    McDArray<unsigned long> perValue(1 << (8 * sizeof(T)));
    for (unsigned long i = 0; i < n; i++) perValue[int(data[i]) - kFirst]++;
    for (int v = 0; v < perValue.size(); v++)
        if (perValue[v]) counts[bins.of(v + kFirst)] += perValue[v];
}

template <class T>
void countEach(const T* data, unsigned long n, const Bins& bins, McDArray<unsigned long>& counts)
{
    for (unsigned long i = 0; i < n; i++) {
        const double v = double(data[i]);
        if (v >= bins.low && v <= bins.high) counts[bins.of(v)]++;
    }
}

template <class T>
int numberOfBins(int wanted, double low, double high)
{
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
        counts.resize(layout.number);
        const T* values = static_cast<const T*>(data.data());
        if constexpr (sizeof(T) <= 2)
            countByValue(values, count, layout, counts);
        else
            countEach(values, count, layout, counts);
    });
}

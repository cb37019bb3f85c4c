#include "hx/HxValueRange.h"

#include "mc/McElementType.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template <class T>
struct Range
{
    T min = std::numeric_limits<T>::max();
    T max = std::numeric_limits<T>::lowest();

    void take(T value)
    {
        if constexpr (std::is_floating_point_v<T>)
            // Written so that not-a-number fails.
            if (!(value >= std::numeric_limits<T>::lowest() && value <= std::numeric_limits<T>::max()))
                return;
        min = std::min(min, value);
        max = std::max(max, value);
    }
    void take(const Range& other)
    {
        min = std::min(min, other.min);
        max = std::max(max, other.max);
    }
};

/// Lanes of one register. The compiler does not reorder floating-point minima by itself, since
/// not-a-number makes their order matter; with lanes written out it need not.
template <class T>
using Lanes [[gnu::vector_size(16)]] = T;

template <class T>
Range<T> rangeOfBlock(const T* values, unsigned long count)
{
    constexpr unsigned long kLanes = 16 / sizeof(T);
    constexpr unsigned long kUnroll = 4; // minima wait for each other: four chains hide that
    Lanes<T> low[kUnroll];
    Lanes<T> high[kUnroll];
    const Lanes<T> largest = std::numeric_limits<T>::max() - Lanes<T>{};
    const Lanes<T> smallest = std::numeric_limits<T>::lowest() + Lanes<T>{};
    std::fill(low, low + kUnroll, largest);
    std::fill(high, high + kUnroll, smallest);

    unsigned long i = 0;
    for (; i + kUnroll * kLanes <= count; i += kUnroll * kLanes) {
        for (unsigned long u = 0; u < kUnroll; u++) {
            Lanes<T> v;
            std::memcpy(&v, values + i + u * kLanes, sizeof v);
            if constexpr (std::is_floating_point_v<T>) {
                // An infinity on the one side is no minimum, and none on the other no maximum.
                low[u] = (v < low[u]) & (v >= smallest) ? v : low[u];
                high[u] = (v > high[u]) & (v <= largest) ? v : high[u];
            } else {
                low[u] = v < low[u] ? v : low[u];
                high[u] = v > high[u] ? v : high[u];
            }
        }
    }
    Range<T> range;
    for (unsigned long u = 0; u < kUnroll; u++) {
        for (unsigned long lane = 0; lane < kLanes; lane++) {
            range.min = std::min<T>(range.min, low[u][lane]);
            range.max = std::max<T>(range.max, high[u][lane]);
        }
    }
    for (; i < count; i++) range.take(values[i]);
    return range;
}

template <class T>
bool rangeOf(const T* values, unsigned long count, int threads, double& min, double& max)
{
    const unsigned long chunk =
        (count + static_cast<unsigned long>(threads) - 1) / static_cast<unsigned long>(threads);
    Range<T> whole;
#pragma omp parallel for num_threads(threads) schedule(static)
    for (int t = 0; t < threads; t++) {
        const unsigned long first = std::min(count, chunk * static_cast<unsigned long>(t));
        const Range<T> part = rangeOfBlock(values + first, std::min(chunk, count - first));
#pragma omp critical(hxValueRangeJoin)
        whole.take(part);
    }
    if (whole.max < whole.min) return false;
    min = static_cast<double>(whole.min);
    max = static_cast<double>(whole.max);
    return true;
}

} // namespace

bool hxValueRange(const void* data, unsigned long count, int type, int threads, double& min, double& max)
{
    bool found = false;
    mcDispatch(type, [&](auto* tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        found = rangeOf(static_cast<const T*>(data), count, std::max(threads, 1), min, max);
    });
    return found;
}

#include "mc/McRawData.h"

#include "mc/McElementType.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace {

// Not-a-number fails every comparison, so a minimum or maximum of this form skips it.
template <class T>
struct Range
{
    T low = std::numeric_limits<T>::max();
    T high = std::numeric_limits<T>::lowest();

    bool isEmpty() const { return high < low; }
};

template <class T>
Range<T> rangeOf(const T* data, unsigned long count)
{
    Range<T> range;
    for (unsigned long i = 0; i < count; i++) {
        const T v = data[i];
        if constexpr (std::is_floating_point_v<T>)
            if (!(std::abs(v) <= std::numeric_limits<T>::max())) continue;
        range.low = v < range.low ? v : range.low;
        range.high = v > range.high ? v : range.high;
    }
    return range;
}

} // namespace

void McRawData::mapLinear(unsigned char* out, const unsigned char* in, unsigned long count, double a,
                          double b)
{
    unsigned char table[256];
    for (int v = 0; v < 256; v++) {
        const double mapped = (v + a) * b;
        table[v] = static_cast<unsigned char>(mapped > 0 ? std::min(mapped, 255.0) : 0.0);
    }
    for (unsigned long i = 0; i < count; i++) out[i] = table[in[i]];
}

bool McRawData::getRange(const void* data, unsigned long count, double& min, double& max, int hostCode)
{
    min = max = 0;
    bool found = false;
    mcDispatch(hostCode, [&](auto* tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        const Range<T> range = rangeOf(static_cast<const T*>(data), count);
        if (range.isEmpty()) return;
        min = double(range.low);
        max = double(range.high);
        found = true;
    });
    return found;
}

void McRawData::memset(float* data, unsigned long count, float value)
{
    std::fill_n(data, count, value);
}

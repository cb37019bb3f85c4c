#include "core/GiGradient.h"

#include "mc/McDArray.h"
#include "mc/McSimd.h"
#include "mc/McThreads.h"

#include <omp.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace {

/// The voxels of a derivative along one axis: behind minus before, times the factor of the step, times the
/// weight.
template <class T>
struct Difference
{
    const T* before;
    const T* behind;
    float step;
    float weight;

    Difference from(unsigned long i) const { return {before + i, behind + i, step, weight}; }
};

/// Rounded once: the difference of two whole numbers of 32 bits is exact in double.
template <class T>
[[gnu::always_inline]] inline float derivative(T behind, T before, float step, float weight)
{
    if constexpr (std::is_same_v<T, float>)
        return (behind - before) * step * weight;
    else if constexpr (sizeof(T) < sizeof(int))
        return static_cast<float>(int{behind} - int{before}) * step * weight;
    else
        return static_cast<float>(static_cast<double>(behind) - static_cast<double>(before)) * step * weight;
}

/// Sums of the squares of the three derivatives of n voxels side by side.
template <class T>
MC_TARGET_CLONES void squares(const Difference<T>& x, const Difference<T>& y, const Difference<T>& z,
                              unsigned long n, float* __restrict sums)
{
    const T *const x0 = x.before, *const x1 = x.behind;
    const T *const y0 = y.before, *const y1 = y.behind;
    const T *const z0 = z.before, *const z1 = z.behind;
    const float xStep = x.step, yStep = y.step, zStep = z.step;
    const float xWeight = x.weight, yWeight = y.weight, zWeight = z.weight;
    for (unsigned long i = 0; i < n; ++i) {
        const float gx = derivative(x1[i], x0[i], xStep, xWeight);
        const float gy = derivative(y1[i], y0[i], yStep, yWeight);
        const float gz = derivative(z1[i], z0[i], zStep, zWeight);
        sums[i] = gx * gx + gy * gy + gz * gz;
    }
}

/// The larger of `start` and all values; what is no number does not count.
MC_TARGET_CLONES
float largestOf(const float* values, unsigned long n, float start)
{
    constexpr unsigned long kLanes = 16;
    float lane[kLanes];
    std::fill_n(lane, kLanes, start);
    unsigned long i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (unsigned long j = 0; j < kLanes; ++j)
            lane[j] = values[i + j] > lane[j] ? values[i + j] : lane[j];
    for (; i < n; ++i) lane[0] = values[i] > lane[0] ? values[i] : lane[0];
    return *std::max_element(lane, lane + kLanes);
}

template <class T>
MC_TARGET_CLONES void writeScaled(const float* sums, unsigned long n, float factor, float largest,
                                  T* __restrict magnitude)
{
    for (unsigned long i = 0; i < n; ++i) {
        const float value = factor * std::sqrt(sums[i]);
        if constexpr (std::is_integral_v<T>) {
            // Rounding up by a hair cannot pass `largest`, and what is no number fails the first test.
            const float low = value > 0 ? value : 0;
            magnitude[i] = static_cast<T>(static_cast<int>(low < largest ? low : largest));
        } else {
            magnitude[i] = value;
        }
    }
}

/// The rows along x, numbered through y and z.
template <class T>
class GradientRows
{
public:
    GradientRows(const T* voxels, const unsigned long* dims, const float* axisWeight)
        : image(voxels),
          nx(dims[0]),
          ny(dims[1]),
          nz(dims[2]),
          weight(axisWeight),
          zeros(static_cast<int>(nx))
    {
    }

    unsigned long count() const { return ny * nz; }
    unsigned long length() const { return nx; }

    void sumsOf(unsigned long r, float* sums) const
    {
        const T* row = image + r * nx;
        const Difference<T> y = across(row, r % ny, ny, nx, weight[1]);
        const Difference<T> z = across(row, r / ny, nz, nx * ny, weight[2]);
        if (nx == 1) {
            squares(none(), y, z, 1, sums);
            return;
        }
        const unsigned long last = nx - 1;
        squares({row, row + 1, 1, weight[0]}, y, z, 1, sums);
        squares({row, row + 2, 0.5f, weight[0]}, y.from(1), z.from(1), last - 1, sums + 1);
        squares({row + last - 1, row + last, 1, weight[0]}, y.from(last), z.from(last), 1, sums + last);
    }

private:
    /// Of an axis without neighbours. Not a row with itself: where that is no number, so is the difference.
    Difference<T> none() const { return {zeros.data(), zeros.data(), 1, 0}; }

    /// To the rows on both sides of position `at`, `stride` elements apart.
    Difference<T> across(const T* row, unsigned long at, unsigned long n, unsigned long stride, float w) const
    {
        if (n == 1) return none();
        const T* before = at > 0 ? row - stride : row;
        const T* behind = at + 1 < n ? row + stride : row;
        return {before, behind, before != row && behind != row ? 0.5f : 1.0f, w};
    }

    const T* image;
    unsigned long nx, ny, nz;
    const float* weight;
    McDArray<T> zeros;
};

} // namespace

template <class T>
void giGradientMagnitude(const T* image, const unsigned long* dims, const float* weight, float largest,
                         T* magnitude)
{
    if (dims[0] == 0 || dims[1] == 0 || dims[2] == 0) return;
    const GradientRows<T> rows(image, dims, weight);
    const long count = static_cast<long>(rows.count());
    const unsigned long n = rows.length();
    const int threads = mcNumThreadsFor(rows.count() * n * sizeof(T));
    McDArray<McDArray<float>> sums(threads);
    for (McDArray<float>& row : sums) row.resize(static_cast<int>(n));

    // The root keeps the order, so it is drawn of the largest sum alone.
    float best = 0;
#pragma omp parallel for num_threads(threads) schedule(static) reduction(max : best)
    for (long r = 0; r < count; ++r) {
        float* row = sums[omp_get_thread_num()].data();
        rows.sumsOf(static_cast<unsigned long>(r), row);
        best = largestOf(row, n, best);
    }
    const float factor = largest / std::sqrt(best);
#pragma omp parallel for num_threads(threads) schedule(static)
    for (long r = 0; r < count; ++r) {
        float* row = sums[omp_get_thread_num()].data();
        rows.sumsOf(static_cast<unsigned long>(r), row);
        writeScaled(row, n, factor, largest, magnitude + static_cast<unsigned long>(r) * n);
    }
}

template void giGradientMagnitude(const unsigned char*, const unsigned long*, const float*, float,
                                  unsigned char*);
template void giGradientMagnitude(const short*, const unsigned long*, const float*, float, short*);
template void giGradientMagnitude(const unsigned short*, const unsigned long*, const float*, float,
                                  unsigned short*);
template void giGradientMagnitude(const int*, const unsigned long*, const float*, float, int*);
template void giGradientMagnitude(const unsigned int*, const unsigned long*, const float*, float,
                                  unsigned int*);
template void giGradientMagnitude(const float*, const unsigned long*, const float*, float, float*);

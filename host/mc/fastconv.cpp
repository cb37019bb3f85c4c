#include "mc/fastconv.h"

#include "mc/McDArray.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::int64_t kOne = 65536;

// Limits the sum over all taps of twice a byte to 62 bits, whatever the kernel.
constexpr double kLargestTapSum = 1l << 53;

// Samples that are filtered together: the sums stay in the first-level cache.
constexpr int kBlock = 1024;

// Samples on each side of a block that its filter can reach; smoothing uses a few dozen.
constexpr int kWidestMargin = 1024;

struct Kernel
{
    McDArray<std::int64_t> taps{kOne}; // the centre and one side, in 1/65536; the last one is not 0
    // True if no sum over bytes can leave 32 bits.
    bool isSmall = true;
};

Kernel kernel;

double fullSum(const float* half, int size)
{
    double sum = half[0];
    for (int i = 1; i < size; i++) sum += 2.0 * half[i];
    return sum;
}

std::int64_t fixedPoint(double weight, double limit)
{
    if (std::isnan(weight)) return 0;
    return std::llround(std::clamp(weight * double(kOne), -limit, limit));
}

// All taps but the centre, which may balance them afterwards.
std::int64_t sumOfSides(const McDArray<std::int64_t>& taps)
{
    std::int64_t sum = 0;
    for (int i = 1; i < taps.size(); i++) sum += 2 * taps[i];
    return sum;
}

bool sumsFit32Bits(const McDArray<std::int64_t>& taps)
{
    std::int64_t sum = std::abs(taps[0]);
    for (int i = 1; i < taps.size(); i++) sum += 2 * std::abs(taps[i]);
    return sum < (1l << 31) / 256;
}

template <class Sum>
inline unsigned char rounded(Sum sum)
{
    const Sum value = (sum + Sum(kOne / 2)) >> 16;
    return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// out[i] from line[i - taps + 1 .. i + taps - 1]. The sums of a block are built tap by tap, so that the
// inner loops have no order to keep.
template <class Sum>
inline __attribute__((always_inline)) void filterBlock(const unsigned char* line, unsigned char* out, int n,
                                                       const std::int64_t* taps, int numTaps)
{
    Sum sums[kBlock];
    for (int i = 0; i < n; i++) sums[i] = Sum(taps[0]) * line[i];
    for (int t = 1; t < numTaps; t++) {
        const Sum tap = Sum(taps[t]);
        const unsigned char* left = line - t;
        const unsigned char* right = line + t;
        for (int i = 0; i < n; i++) sums[i] += tap * (left[i] + right[i]);
    }
    for (int i = 0; i < n; i++) out[i] = rounded(sums[i]);
}

MC_TARGET_CLONES
void filterSmall(const unsigned char* line, unsigned char* out, int n, const std::int64_t* taps, int numTaps)
{
    filterBlock<std::int32_t>(line, out, n, taps, numTaps);
}

MC_TARGET_CLONES
void filterLarge(const unsigned char* line, unsigned char* out, int n, const std::int64_t* taps, int numTaps)
{
    filterBlock<std::int64_t>(line, out, n, taps, numTaps);
}

// Samples [first, first + n) of a line, whose ends go on as their samples.
void gather(const unsigned char* in, int count, int stride, long first, long n, unsigned char* out)
{
    const long before = std::clamp(-first, 0l, n);
    const long after = std::clamp(first + n - count, 0l, n);
    const unsigned char* from = in + (first + before) * stride;
    const long inside = n - before - after;
    std::memset(out, in[0], before);
    if (stride == 1)
        std::memcpy(out + before, from, inside);
    else
        for (long i = 0; i < inside; i++) out[before + i] = from[i * stride];
    std::memset(out + n - after, in[long(count - 1) * stride], after);
}

void scatter(const unsigned char* in, int n, unsigned char* out, int stride)
{
    for (int i = 0; i < n; i++) out[long(i) * stride] = in[i];
}

void copyLine(const unsigned char* in, int count, int stride, unsigned char* out)
{
    for (int i = 0; i < count; i++) out[long(i) * stride] = in[long(i) * stride];
}

// For kernels that no block on the stack has room for: sample by sample, without any memory.
void filterDirectly(const unsigned char* in, int count, int stride, unsigned char* out,
                    const std::int64_t* taps, int numTaps)
{
    const auto at = [&](long i) { return in[std::clamp(i, 0l, long(count - 1)) * stride]; };
    for (long i = 0; i < count; i++) {
        std::int64_t sum = taps[0] * at(i);
        for (int t = 1; t < numTaps; t++) sum += taps[t] * (at(i - t) + at(i + t));
        out[i * stride] = rounded(sum);
    }
}

} // namespace

void initPackedLuts(const float* half, int kernelSize)
{
    Kernel next;
    if (kernelSize > 1) {
        next.taps.clear();
        const double limit = kLargestTapSum / kernelSize;
        for (int i = 0; i < kernelSize; i++) next.taps.append(fixedPoint(half[i], limit));
        if (std::abs(fullSum(half, kernelSize) - 1.0) <= 0.001) next.taps[0] = kOne - sumOfSides(next.taps);
        while (next.taps.size() > 1 && next.taps.last() == 0) next.taps.pop();
        next.isSmall = sumsFit32Bits(next.taps);
    }
    kernel = next;
}

void fastconv(const unsigned char* in, int count, int stride, unsigned char* out)
{
    const int numTaps = kernel.taps.size();
    if (count < 1) return;
    if (numTaps == 1 && kernel.taps[0] == kOne) {
        copyLine(in, count, stride, out);
        return;
    }

    const int margin = numTaps - 1;
    if (margin > kWidestMargin) return filterDirectly(in, count, stride, out, kernel.taps.data(), numTaps);

    // All on the stack: in a team of threads there is nobody who could take an exception about memory.
    unsigned char window[kBlock + 2 * kWidestMargin];
    unsigned char block[kBlock];
    const auto filter = kernel.isSmall ? filterSmall : filterLarge;
    for (long at = 0; at < count; at += kBlock) {
        const int n = int(std::min(long(kBlock), count - at));
        gather(in, count, stride, at - margin, n + 2 * margin, window);
        unsigned char* target = stride == 1 ? out + at : block;
        filter(window + margin, target, n, kernel.taps.data(), numTaps);
        if (stride != 1) scatter(block, n, out + at * stride, stride);
    }
}

#include "mc/fastconv.h"

#include "mc/McDArray.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr std::int64_t kOne = 65536;

// Limits the sum over all taps of twice a byte to 62 bits, whatever the kernel.
constexpr double kLargestTapSum = 1l << 53;

// Samples that are filtered together: the sums stay in the first-level cache.
constexpr int kBlock = 1024;

// Samples on each side of a block that its filter can reach; smoothing uses a few dozen.
constexpr int kWidestMargin = 1024;

// Taps of one side that are added in one go, with their sums in registers.
constexpr int kGroup = 3; // see addLastGroup()

// Tap t of a kernel meets the samples from before[t] and from after[t] on; those of the centre are the same.
struct Neighbors
{
    const unsigned char* before[kWidestMargin + 1];
    const unsigned char* after[kWidestMargin + 1];
};

struct Kernel
{
    McDArray<std::int64_t> taps{kOne}; // the centre and one side, in 1/65536; the last one is not 0
    // The same for kernels that blur: sides of at least 0, and below a half, that add up to 1 with the
    // centre. A sample then changes by the sides' share of its differences to its neighbors, and stays within
    // a byte. Empty for all other kernels.
    McDArray<std::int16_t> blur;
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

McDArray<std::int16_t> blurTaps(const McDArray<std::int64_t>& taps)
{
    McDArray<std::int16_t> result;
    if (taps.size() < 2 || taps[0] < 0 || taps[0] + sumOfSides(taps) != kOne) return {};
    for (std::int64_t tap : taps) {
        if (tap < 0 || (tap >= kOne / 2 && result.size() > 0)) return {};
        result.append(static_cast<std::int16_t>(tap)); // that of the centre is not looked at
    }
    return result;
}

// A sum of products in three fields of 16 bits, the lower two with 8 bits of it each: twice as many of them
// fit into a vector as of fields of 32 bits, and their upper halves take the carries of a whole group.
struct Sum
{
    std::uint16_t low = 0, middle = 128; // a half in 1/65536, for the rounding
    std::int16_t high = 0;

    void add(std::int16_t difference, std::int16_t tap)
    {
        const auto product = static_cast<std::uint16_t>(difference * tap);
        low += product & 255;
        middle += product >> 8;
        high += static_cast<std::int16_t>(difference * tap >> 16);
    }
    void carry()
    {
        middle += low >> 8;
        low &= 255;
        high += middle >> 8;
        middle &= 255;
    }
};

struct Sums
{
    std::uint16_t low[kBlock], middle[kBlock];
    std::int16_t high[kBlock];
};

// Adds the samples under `size` taps from `first` on; the first group also those of the centre. The last
// group turns the sums into bytes.
template <int size, bool isFirst, bool isLast>
inline __attribute__((always_inline)) void addGroup(const Neighbors& at, long from, const std::int16_t* taps,
                                                    int first, Sums& sums, unsigned char* __restrict out,
                                                    int n)
{
    const unsigned char* center = at.before[0] + from;
    const unsigned char *before[size], *after[size];
    std::int16_t tap[size];
    for (int t = 0; t < size; t++) {
        before[t] = at.before[first + t] + from;
        after[t] = at.after[first + t] + from;
        tap[t] = taps[first + t];
    }
    for (int i = 0; i < n; i++) {
        Sum sum;
        if (isFirst)
            sum.high = center[i];
        else
            sum = {sums.low[i], sums.middle[i], sums.high[i]};
        for (int t = 0; t < size; t++)
            sum.add(static_cast<std::int16_t>(before[t][i] + after[t][i] - 2 * center[i]), tap[t]);
        sum.carry();
        if (isLast) {
            // Always a byte. The compiler does not know, and would add the fields as bytes, which costs more
            // than it saves.
            const auto value = static_cast<std::uint16_t>(sum.high);
            out[i] = static_cast<unsigned char>(std::min<std::uint16_t>(value, 255));
        } else {
            sums.low[i] = sum.low;
            sums.middle[i] = sum.middle;
            sums.high[i] = sum.high;
        }
    }
}

// The last group, which may be smaller than the others.
template <bool isFirst>
inline __attribute__((always_inline)) void addLastGroup(const Neighbors& at, long from,
                                                        const std::int16_t* taps, int first, int size,
                                                        Sums& sums, unsigned char* out, int n)
{
    if (size == 1) return addGroup<1, isFirst, true>(at, from, taps, first, sums, out, n);
    if (size == 2) return addGroup<2, isFirst, true>(at, from, taps, first, sums, out, n);
    addGroup<3, isFirst, true>(at, from, taps, first, sums, out, n);
}

// Samples [from, from + n), at most a block, with a kernel that blurs.
MC_TARGET_CLONES
void blurBlock(const Neighbors& at, long from, const std::int16_t* taps, int numTaps, unsigned char* out,
               int n)
{
    Sums sums;
    if (numTaps <= 1 + kGroup) return addLastGroup<true>(at, from, taps, 1, numTaps - 1, sums, out, n);
    addGroup<kGroup, true, false>(at, from, taps, 1, sums, out, n);
    int first = 1 + kGroup;
    for (; first + kGroup < numTaps; first += kGroup)
        addGroup<kGroup, false, false>(at, from, taps, first, sums, out, n);
    addLastGroup<false>(at, from, taps, first, numTaps - first, sums, out, n);
}

unsigned char rounded(std::int64_t sum)
{
    const std::int64_t value = (sum + kOne / 2) >> 16;
    return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// The same with any kernel. The sums are built tap by tap, so that the inner loops have no order to keep.
MC_TARGET_CLONES
void filterBlock(const Neighbors& at, long from, const std::int64_t* taps, int numTaps, unsigned char* out,
                 int n)
{
    std::int64_t sums[kBlock];
    for (int i = 0; i < n; i++) sums[i] = taps[0] * at.before[0][from + i];
    for (int t = 1; t < numTaps; t++) {
        const unsigned char* before = at.before[t] + from;
        const unsigned char* after = at.after[t] + from;
        for (int i = 0; i < n; i++) sums[i] += taps[t] * (before[i] + after[i]);
    }
    for (int i = 0; i < n; i++) out[i] = rounded(sums[i]);
}

void filter(const Neighbors& at, long from, unsigned char* out, int n)
{
    if (kernel.blur.size() > 0)
        blurBlock(at, from, kernel.blur.data(), kernel.blur.size(), out, n);
    else
        filterBlock(at, from, kernel.taps.data(), kernel.taps.size(), out, n);
}

bool isIdentity()
{
    return kernel.taps.size() == 1 && kernel.taps[0] == kOne;
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
void filterDirectly(const unsigned char* in, int count, long stride, unsigned char* out, long outStride)
{
    const McDArray<std::int64_t>& taps = kernel.taps;
    const auto at = [&](long i) { return in[std::clamp(i, 0l, long(count - 1)) * stride]; };
    for (long i = 0; i < count; i++) {
        std::int64_t sum = taps[0] * at(i);
        for (int t = 1; t < taps.size(); t++) sum += taps[t] * (at(i - t) + at(i + t));
        out[i * outStride] = rounded(sum);
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
        next.blur = blurTaps(next.taps);
    }
    kernel = std::move(next);
}

void fastconv(const unsigned char* in, int count, int stride, unsigned char* out)
{
    if (count < 1) return;
    if (isIdentity()) return copyLine(in, count, stride, out);
    const int margin = kernel.taps.size() - 1;
    if (margin > kWidestMargin) return filterDirectly(in, count, stride, out, stride);

    // All on the stack: in a team of threads there is nobody who could take an exception about memory.
    unsigned char window[kBlock + 2 * kWidestMargin];
    unsigned char block[kBlock];
    Neighbors at;
    for (int t = 0; t <= margin; t++) {
        at.before[t] = window + margin - t;
        at.after[t] = window + margin + t;
    }
    for (long first = 0; first < count; first += kBlock) {
        const int n = int(std::min(long(kBlock), count - first));
        gather(in, count, stride, first - margin, n + 2 * margin, window);
        unsigned char* target = stride == 1 ? out + first : block;
        filter(at, 0, target, n);
        if (stride != 1) scatter(block, n, out + first * stride, stride);
    }
}

void fastconvColumns(const unsigned char* in, int width, int height, long stride, unsigned char* out,
                     long outStride)
{
    if (width < 1 || height < 1) return;
    const int margin = kernel.taps.size() - 1;
    if (margin > kWidestMargin) {
        for (int x = 0; x < width; x++) filterDirectly(in + x, height, stride, out + x, outStride);
        return;
    }

    const auto row = [&](int y) { return in + std::clamp(y, 0, height - 1) * stride; };
    Neighbors at;
    for (int y = 0; y < height; y++) {
        if (isIdentity()) {
            std::memcpy(out + y * outStride, row(y), width);
            continue;
        }
        for (int t = 0; t <= margin; t++) {
            at.before[t] = row(y - t);
            at.after[t] = row(y + t);
        }
        for (int x = 0; x < width; x += kBlock)
            filter(at, x, out + y * outStride + x, std::min(kBlock, width - x));
    }
}

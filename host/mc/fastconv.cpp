#include "mc/fastconv.h"

#include "mc/McDArray.h"
#include "mc/McMemory.h"
#include "mc/McSimd.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr std::int64_t kOne = 65536;

// Limits the sum over all taps of twice a byte to 62 bits, whatever the kernel.
constexpr double kLargestTapSum = 1l << 53;

// Samples that are filtered together: the sums stay in the first-level cache.
constexpr int kBlock = 1024;

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

void gather(const unsigned char* in, int stride, int n, unsigned char* out)
{
    if (stride == 1)
        std::memcpy(out, in, n);
    else
        for (int i = 0; i < n; i++) out[i] = in[long(i) * stride];
}

void scatter(const unsigned char* in, int n, unsigned char* out, int stride)
{
    for (int i = 0; i < n; i++) out[long(i) * stride] = in[i];
}

void copyLine(const unsigned char* in, int count, int stride, unsigned char* out)
{
    for (int i = 0; i < count; i++) out[long(i) * stride] = in[long(i) * stride];
}

struct FreeMemory
{
    void operator()(unsigned char* memory) const { std::free(memory); }
};

// Room for one line of each thread. It stays from call to call, since there is a call for every row and
// column of a volume.
unsigned char* lineBuffer(unsigned long size)
{
    thread_local std::unique_ptr<unsigned char, FreeMemory> memory;
    thread_local unsigned long capacity = 0;
    if (size > capacity) {
        memory.reset(static_cast<unsigned char*>(mcAllocate(size)));
        capacity = size;
    }
    return memory.get();
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
    unsigned char* buffer = lineBuffer(2ul * margin + count);
    unsigned char* line = buffer + margin;
    gather(in, stride, count, line);
    std::memset(buffer, line[0], margin);
    std::memset(line + count, line[count - 1], margin);

    const auto filter = kernel.isSmall ? filterSmall : filterLarge;
    unsigned char block[kBlock];
    for (int at = 0; at < count; at += kBlock) {
        const int n = std::min(kBlock, count - at);
        unsigned char* target = stride == 1 ? out + at : block;
        filter(line + at, target, n, kernel.taps.data(), numTaps);
        if (stride != 1) scatter(block, n, out + long(at) * stride, stride);
    }
}

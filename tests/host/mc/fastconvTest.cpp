#include "mc/fastconv.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

std::vector<float> gaussKernel(int size)
{
    std::vector<float> kernel(size);
    float sum = 0;
    for (int i = 0; i < size; i++) {
        const float x = float(2 * i) / float(size);
        kernel[i] = std::exp(-0.5f * x * x);
        sum += i == 0 ? kernel[i] : 2 * kernel[i];
    }
    for (float& k : kernel) k /= sum;
    return kernel;
}

// The rule with doubles for the whole numbers: weights rounded to 1/65536, the centre taking the remainder.
Bytes filteredPlainly(const Bytes& in, const std::vector<float>& half)
{
    std::vector<double> taps;
    for (float h : half) taps.push_back(std::round(double(h) * 65536));
    double sum = half[0], sides = 0;
    for (size_t i = 1; i < half.size(); i++) {
        sum += 2.0 * half[i];
        sides += 2 * taps[i];
    }
    if (std::abs(sum - 1) <= 0.001) taps[0] = 65536 - sides;
    Bytes out(in.size());
    const int n = int(in.size());
    for (int i = 0; i < n; i++) {
        double value = taps[0] * in[i];
        for (int t = 1; t < int(taps.size()); t++)
            value += taps[t] * (in[std::max(i - t, 0)] + in[std::min(i + t, n - 1)]);
        out[i] = static_cast<unsigned char>(std::clamp(std::floor((value + 32768) / 65536), 0.0, 255.0));
    }
    return out;
}

Bytes filtered(const Bytes& in, int stride)
{
    Bytes spread(in.size() * stride, 0xcc), result(in.size() * stride, 0xcc), out(in.size());
    for (size_t i = 0; i < in.size(); i++) spread[i * stride] = in[i];
    fastconv(spread.data(), int(in.size()), stride, result.data());
    for (size_t i = 0; i < result.size(); i++) {
        if (i % stride == 0)
            out[i / stride] = result[i];
        else
            EXPECT_EQ(result[i], 0xcc) << "bytes between the samples are not ours";
    }
    return out;
}

// Column x of a raster whose rows are wider than what is filtered.
Bytes column(const Bytes& raster, int stride, int height, int x)
{
    Bytes result;
    for (int y = 0; y < height; y++) result.push_back(raster[y * stride + x]);
    return result;
}

Bytes randomLine(int n, std::mt19937& random)
{
    Bytes line(n);
    for (unsigned char& v : line) v = static_cast<unsigned char>(random());
    return line;
}

} // namespace

TEST(Fastconv, FollowsTheFixedPointRule)
{
    std::mt19937 random(53);
    const std::vector<float> kernels[] = {gaussKernel(2),         gaussKernel(7),
                                          gaussKernel(40),        gaussKernel(1500),
                                          {0.5f, 0.5f},           {3.0f, -1.0f},
                                          {-2.0f, 0.1f},          {0.2f, 0.1f, 0.05f},
                                          {1000.0f, 5e6f, -7e5f}, {0.5f, 0.25f, 1e-9f},
                                          {0.3334f, 0.33331111f}, {0.0f, 0.0f, 0.5f, 0},
                                          {0.7f, 1e-9f},          std::vector<float>(400, 1.0f / 799)};
    for (const std::vector<float>& kernel : kernels) {
        initPackedLuts(kernel.data(), int(kernel.size()));
        for (int n : {1, 2, 3, 10, 63, 500, 1024, 1025, 2500}) {
            const Bytes line = randomLine(n, random);
            const Bytes expected = filteredPlainly(line, kernel);
            for (int stride : {1, 3, 64})
                ASSERT_EQ(filtered(line, stride), expected) << kernel[0] << " n " << n;
        }
    }
}

TEST(Fastconv, FiltersColumnsAsLines)
{
    std::mt19937 random(57);
    const std::vector<float> kernels[] = {{1.0f},         gaussKernel(2), gaussKernel(4),   gaussKernel(5),
                                          gaussKernel(8), {3.0f, -1.0f},  gaussKernel(1500)};
    for (const std::vector<float>& kernel : kernels) {
        initPackedLuts(kernel.data(), int(kernel.size()));
        for (auto [width, height] : {std::pair(1, 1), {1, 9}, {40, 1}, {17, 3}, {1500, 30}}) {
            const int stride = width + 5, outStride = width + 2;
            const Bytes raster = randomLine(stride * height, random);
            Bytes result(outStride * height, 0xcc);
            fastconvColumns(raster.data(), width, height, stride, result.data(), outStride);
            for (int x = 0; x < outStride; x++) {
                const Bytes expected = x < width ? filteredPlainly(column(raster, stride, height, x), kernel)
                                                 : Bytes(height, 0xcc);
                ASSERT_EQ(column(result, outStride, height, x), expected)
                    << kernel[0] << " " << width << " x " << height << ", column " << x;
            }
        }
    }
}

TEST(Fastconv, CopiesWithOneTapOrNone)
{
    std::mt19937 random(59);
    const Bytes line = randomLine(100, random);
    const float half = 0.5f;
    for (int size : {1, 0, -3}) {
        initPackedLuts(&half, size);
        EXPECT_EQ(filtered(line, 1), line);
        EXPECT_EQ(filtered(line, 5), line);
    }
}

TEST(Fastconv, ServesManyThreads)
{
    std::mt19937 random(61);
    const std::vector<float> kernel = gaussKernel(9);
    initPackedLuts(kernel.data(), 9);
    std::vector<Bytes> lines(64);
    for (Bytes& line : lines) line = randomLine(1 + int(random() % 900), random);
    std::vector<Bytes> results(lines.size());
#pragma omp parallel for num_threads(4) schedule(dynamic)
    for (int i = 0; i < int(lines.size()); i++) {
        results[i].resize(lines[i].size());
        fastconv(lines[i].data(), int(lines[i].size()), 1, results[i].data());
    }
    for (size_t i = 0; i < lines.size(); i++) EXPECT_EQ(results[i], filteredPlainly(lines[i], kernel));
}

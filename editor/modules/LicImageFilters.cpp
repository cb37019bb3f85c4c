// Raster of bytes: convolution and blur.

#include "modules/LicImage.h"

#include "mc/McDArray.h"
#include "mc/McMemoryException.h"
#include "mc/fastconv.h"

#include <cmath>

namespace {

/// Half a Gaussian, so that both halves add up to 1.
McDArray<float> gaussKernel(int size)
{
    McDArray<float> kernel(size > 0 ? size : 1);
    kernel[0] = 1;
    float sum = 1;
    for (int i = 1; i < size; ++i) {
        const float x = static_cast<float>(2 * i) / static_cast<float>(size);
        kernel[i] = static_cast<float>(std::exp(-0.5 * x * x));
        sum += 2 * kernel[i];
    }
    for (float& weight : kernel) weight /= sum;
    return kernel;
}

} // namespace

int LicImage::convolve(int size, const float* kernel, LicImage* out)
{
    if (width == 0 || height == 0) return prepared(out) ? 1 : 0;
    return boundedconvolve(size, kernel, McBox2i(0, 0, width - 1, height - 1), out);
}

int LicImage::boundedconvolve(int size, const float* kernel, const McBox2i& box, LicImage* out)
{
    const McBox2i part = box.intersected(McBox2i(0, 0, width - 1, height - 1));
    if (part.isEmpty()) return 1;
    LicImage rows;
    if (!rows.setSize(part.width(), part.height(), channels)) return 0;
    try {
        initPackedLuts(kernel, size);
    } catch (const McMemoryException&) {
        return 0;
    }
    const int first = part.xmin * channels;
    for (int y = 0; y < rows.height; ++y)
        for (int c = 0; c < channels; ++c)
            fastconv(row(part.ymin + y) + first + c, rows.width, channels, rows.row(y) + c);
    LicImage* target = prepared(out); // only now: `out` may own what this image wraps
    if (!target) return 0;
    fastconvColumns(rows.data, rows.stride, rows.height, rows.stride, target->row(part.ymin) + first,
                    target->stride);
    return 1;
}

int LicImage::gaussBlur(int size, LicImage* out)
{
    try {
        const McDArray<float> kernel = gaussKernel(size);
        return convolve(size, kernel.data(), out);
    } catch (const McMemoryException&) {
        return 0;
    }
}

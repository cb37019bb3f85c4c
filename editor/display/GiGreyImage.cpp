#include "display/GiGreyImage.h"

#include "display/GiFrameBuffer.h"
#include "hx/HxColormap.h"
#include "mc/McDArray.h"
#include "mc/McMemoryException.h"
#include "mc/McSimd.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

// One table gives the display pixel of every place that a value can have: below the window, the grey
// values 0 to 255, above it, and then all of these once more with the tint of the masking window.
constexpr int kBelow = 0, kFirstGrey = 1, kAbove = 257, kTinted = 258;
constexpr int kPlaces = 2 * kTinted;

/// A blend of weight 96 towards a full low byte.
unsigned int tinted(unsigned int pixel)
{
    constexpr unsigned int kRest = 159, kFullLow = 24480; // 255 - 96, 255 * 96
    const unsigned int high = (pixel >> 16 & 255) * kRest >> 8;
    const unsigned int middle = (pixel >> 8 & 255) * kRest >> 8;
    const unsigned int low = ((pixel & 255) * kRest + kFullLow) >> 8;
    return high << 16 | middle << 8 | low;
}

/// From a value to its place in the table.
struct Window
{
    float scale, bias;
    float maskLow, maskHigh; // low above high: no voxel is tinted

    Window(float minimum, float maximum) : maskLow(std::numeric_limits<float>::infinity()), maskHigh(-maskLow)
    {
        const float d = maximum - minimum;
        scale = d == 0 ? 255 : 255 / d;
        bias = -scale * minimum;
    }
};

constexpr std::size_t kLanes = 8;
using Floats = float __attribute__((vector_size(kLanes * 4)));
using Ints = int __attribute__((vector_size(kLanes * 4)));
using Words = unsigned int __attribute__((vector_size(kLanes * 4)));
using Bytes = unsigned char __attribute__((vector_size(kLanes)));

constexpr std::size_t roundedUp(std::size_t n)
{
    return (n + kLanes - 1) / kLanes * kLanes;
}

// Added to a number from 0 to 255 it leaves the nearest whole one in the low bits, even on a tie.
constexpr float kRounder = 12582912;

/// The pixels where grey values are shown as they are: without a colour map, and without a tint.
///
/// values  n, in an array of a whole number of lanes
/// grey    n bytes, 0 to 255
///
/// This and the next one are written with vectors, since from branches the compiler makes none.
MC_TARGET_CLONES
void shade(const float* values, std::size_t n, float scale, float bias, unsigned int* packed,
           unsigned char* grey)
{
    const Floats none{}, most = none + 255;
    for (std::size_t i = 0; i < n; i += kLanes) {
        Floats v;
        std::memcpy(&v, values + i, sizeof v);
        const Floats t = scale * v + bias;
        Floats limited = t > none ? t : none; // also for NaN
        limited = (limited < most ? limited : most) + kRounder;
        Words g;
        std::memcpy(&g, &limited, sizeof g);
        g &= 255;
        const Words pixels = g * 0x01010101u;
        const Bytes bytes = __builtin_convertvector(g, Bytes);
        if (n - i >= kLanes) {
            std::memcpy(packed + i, &pixels, sizeof pixels);
            std::memcpy(grey + i, &bytes, sizeof bytes);
        } else {
            std::memcpy(packed + i, &pixels, (n - i) * sizeof(unsigned int));
            std::memcpy(grey + i, &bytes, n - i);
        }
    }
}

/// places  one per value, in an array of the same size
///
/// A comparison of vectors is -1 or 0.
MC_TARGET_CLONES
void locate(const float* values, std::size_t n, float scale, float bias, float maskLow, float maskHigh,
            int* places, unsigned char* grey)
{
    const Floats none{}, most = none + 255;
    for (std::size_t i = 0; i < n; i += kLanes) {
        Floats v;
        std::memcpy(&v, values + i, sizeof v);
        const Floats t = scale * v + bias;
        Floats limited = t > none ? t : none; // also for NaN
        limited = (limited < most ? limited : most) + kRounder;
        Ints g;
        std::memcpy(&g, &limited, sizeof g);
        g &= 255;
        Ints place = g + kFirstGrey - (t > most) + ~(t >= none);
        place += (v >= maskLow) & (v <= maskHigh) & kTinted;
        std::memcpy(places + i, &place, sizeof place);
        const Bytes bytes = __builtin_convertvector(g, Bytes);
        if (n - i >= kLanes)
            std::memcpy(grey + i, &bytes, sizeof bytes);
        else
            std::memcpy(grey + i, &bytes, n - i);
    }
}

MC_TARGET_CLONES
void lookUp(const int* places, std::size_t n, const unsigned int* pixels, unsigned int* packed)
{
    for (std::size_t i = 0; i < n; ++i) packed[i] = pixels[places[i]];
}

// How far ahead memory is asked for, where no hardware guesses what comes next: in a slice along the
// slices of the volume each row lies far from the former one, and in one across its rows each element lies
// in a cache line of its own. An address beyond the volume is asked for in vain, which harms nothing.
constexpr long kRowsAhead = 4;      // of 512 bytes: about as long as an answer takes
constexpr long kElementsAhead = 32; // twice as far was slower, see bench/display
constexpr long kCacheLine = 64;

/// One row of elements as floats.
template <class T>
void readRow(const unsigned char* row, std::size_t n, long xStride, long yStride, float* values)
{
    if (xStride == static_cast<long>(sizeof(T))) {
        const long bytes = static_cast<long>(n * sizeof(T));
        if (yStride != bytes)
            for (long i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(row + kRowsAhead * yStride + i);
        const T* elements = reinterpret_cast<const T*>(row);
        for (std::size_t i = 0; i < n; ++i) values[i] = static_cast<float>(elements[i]);
        return;
    }
    for (std::size_t i = 0; i < n; ++i, row += xStride) {
        __builtin_prefetch(row + kElementsAhead * xStride);
        values[i] = static_cast<float>(*reinterpret_cast<const T*>(row));
    }
}

} // namespace

GiGreyImage::GiGreyImage() = default;

GiGreyImage::~GiGreyImage()
{
    std::free(grey);
    std::free(packed);
}

void GiGreyImage::initPackedColors(HxColormap* map, unsigned int* table, unsigned int& below,
                                   unsigned int& above)
{
    constexpr float kJustBelow = -0.001f, kJustAbove = 1.001f;
    for (int i = 0; i < 256; ++i)
        table[i] = map ? map->packedColor(static_cast<float>(i) / 255) >> 8
                       : static_cast<unsigned int>(i) * 0x01010101u;
    below = map ? map->packedColor(kJustBelow) >> 8 : table[0];
    above = map ? map->packedColor(kJustAbove) >> 8 : table[255];
}

void GiGreyImage::reserve(unsigned long newWidth, unsigned long newHeight)
{
    // Never of size 0, for which the answer could be null.
    const unsigned long n = newWidth * newHeight > 0 ? newWidth * newHeight : 1;
    void* bytes = std::realloc(grey, n);
    if (!bytes) throw McMemoryException(n);
    grey = static_cast<unsigned char*>(bytes);
    void* pixels = std::realloc(packed, n * sizeof(unsigned int));
    if (!pixels) throw McMemoryException(n * sizeof(unsigned int));
    packed = static_cast<unsigned int*>(pixels);
    width = newWidth;
    height = newHeight;
}

template <class T>
void GiGreyImage::setImage(unsigned long newWidth, unsigned long newHeight, float minimum, float maximum,
                           const T* data, int xStride, unsigned long yStride)
{
    if (!data) return;
    reserve(newWidth, newHeight);
    heightScales.clear();

    unsigned int pixels[kPlaces];
    initPackedColors(colormap, pixels + kFirstGrey, pixels[kBelow], pixels[kAbove]);
    for (int i = 0; i < kTinted; ++i) pixels[kTinted + i] = tinted(pixels[i]);
    Window window(minimum, maximum);
    if (maskingOverlay) {
        window.maskLow = maskingWindow[0];
        window.maskHigh = maskingWindow[1];
    }

    const bool isPlain = !colormap && !maskingOverlay;
    const auto* row = reinterpret_cast<const unsigned char*>(data);
    McDArray<float> values(static_cast<int>(roundedUp(width)));
    McDArray<int> places(isPlain ? 0 : values.size());
    for (unsigned long y = 0; y < height; ++y, row += yStride) {
        readRow<T>(row, width, xStride, static_cast<long>(yStride), values.data());
        unsigned char* const greyRow = grey + y * width;
        unsigned int* const packedRow = packed + y * width;
        if (isPlain) {
            shade(values.data(), width, window.scale, window.bias, packedRow, greyRow);
        } else {
            locate(values.data(), width, window.scale, window.bias, window.maskLow, window.maskHigh,
                   places.data(), greyRow);
            lookUp(places.data(), width, pixels, packedRow);
        }
    }
}

template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const unsigned char*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const short*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const unsigned short*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const int*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const unsigned int*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const float*, int,
                                    unsigned long);
template void GiGreyImage::setImage(unsigned long, unsigned long, float, float, const double*, int,
                                    unsigned long);

void GiGreyImage::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    // A slice of another size is one that the buffer was not set up for; its rows end elsewhere.
    const bool covers = width >= static_cast<unsigned long>(frameBuffer->originalSize.x) &&
                        height >= static_cast<unsigned long>(frameBuffer->originalSize.y);
    if (packed && covers)
        frameBuffer->putImageGrey8Zoomed(packed, width, height, width * sizeof(unsigned int));
}

McBox2i GiGreyImage::getBoundingBox()
{
    return McBox2i(positionX, positionY, positionX + static_cast<int>(width) - 1,
                   positionY + static_cast<int>(height) - 1);
}

void GiGreyImage::setMaskingWindow(float minimum, float maximum)
{
    maskingWindow[0] = minimum;
    maskingWindow[1] = maximum;
}

void GiGreyImage::setColormap(HxColormap* map)
{
    colormap = map;
}

void GiGreyImage::clear()
{
    std::free(grey);
    std::free(packed);
    grey = nullptr;
    packed = nullptr;
    width = height = 0;
    positionX = positionY = 0;
    heightScales.clear();
}

void GiGreyImage::setHeightScales(float s)
{
    heightScales.resize(static_cast<int>(height));
    for (int i = 0; i < heightScales.size(); ++i)
        heightScales[i] = s * static_cast<float>(i + 1) / static_cast<float>(height);
}

void GiGreyImage::setHeightScales(const float* range, const float* coords)
{
    const int n = static_cast<int>(height);
    if (n < 2) return;
    const float end = coords[n - 1] + (coords[n - 1] - coords[n - 2]) / 2;
    heightScales.resize(n);
    for (int i = 0; i < n; ++i) {
        const float upper = i < n - 1 ? (coords[i] + coords[i + 1]) / 2 : end;
        heightScales[i] = range[0] + (range[1] - range[0]) * (upper - coords[0]) / (end - coords[0]);
    }
}

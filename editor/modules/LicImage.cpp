// Raster of bytes: memory and operations pixel by pixel. Filters and files are in files of their own.

#include "modules/LicImage.h"

#include "mc/McMemory.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

LicImage::LicImage(int w, int h, unsigned char* pixels) : LicImage(w, h, 1, w, pixels) {}

LicImage::LicImage(int w, int h, int rowBytes, unsigned char* pixels) : LicImage(w, h, 1, rowBytes, pixels) {}

LicImage::LicImage(int w, int h, int bytesPerPixel, int rowBytes, unsigned char* pixels)
    : data(pixels), width(w), height(h), channels(bytesPerPixel), stride(rowBytes)
{
    if (!pixels) setSize(w, h, bytesPerPixel);
}

LicImage::LicImage(const LicImage& other)
{
    *this = other;
}

LicImage::LicImage(LicImage&& other) noexcept
{
    swap(other);
}

/// In new memory first: the other one may wrap rows of this one.
LicImage& LicImage::operator=(const LicImage& other)
{
    if (this == &other) return *this;
    LicImage copy;
    if (copy.setSize(other.width, other.height, other.channels)) copy.copyRows(other);
    swap(copy);
    return *this;
}

LicImage& LicImage::operator=(LicImage&& other) noexcept
{
    LicImage taken(std::move(other));
    swap(taken);
    return *this;
}

LicImage::~LicImage()
{
    std::free(buffer);
}

bool LicImage::setSize(int w, int h, int bytesPerPixel)
{
    std::free(std::exchange(buffer, nullptr));
    data = nullptr;
    width = height = stride = 0;
    channels = std::max(bytesPerPixel, 1);
    w = std::max(w, 0);
    h = std::max(h, 0);
    const std::int64_t rowBytes = std::int64_t{w} * channels;
    if (rowBytes > std::numeric_limits<int>::max()) return false;
    try {
        buffer = static_cast<unsigned char*>(
            mcAllocate(mcByteCount(static_cast<unsigned long>(rowBytes), static_cast<unsigned long>(h))));
    } catch (const McMemoryException&) {
        return false;
    }
    data = buffer;
    width = w;
    height = h;
    stride = static_cast<int>(rowBytes);
    return true;
}

void LicImage::swap(LicImage& other) noexcept
{
    std::swap(buffer, other.buffer);
    std::swap(data, other.data);
    std::swap(width, other.width);
    std::swap(height, other.height);
    std::swap(channels, other.channels);
    std::swap(stride, other.stride);
}

bool LicImage::hasShapeOf(const LicImage& other) const
{
    return width == other.width && height == other.height && channels == other.channels;
}

void LicImage::copyRows(const LicImage& other)
{
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    if (bytes == 0) return;
    for (int y = 0; y < height; ++y) std::memcpy(row(y), other.row(y), bytes);
}

void LicImage::moveInto(LicImage& out)
{
    if (out.hasShapeOf(*this))
        out.copyRows(*this);
    else
        out.swap(*this);
}

LicImage* LicImage::prepared(LicImage* out)
{
    if (!out || out == this) return this;
    if (out->hasShapeOf(*this)) return out;
    if (!out->setSize(width, height, channels)) return nullptr;
    out->clear();
    return out;
}

void LicImage::clear()
{
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    for (int y = 0; y < height; ++y) std::memset(row(y), 0, bytes);
}

bool LicImage::subBox(int& x0, int& y0, int& x1, int& y1, int value, int equal) const
{
    x0 = width;
    y0 = height;
    x1 = y1 = -1;
    for (int y = 0; y < height; ++y) {
        const unsigned char* pixels = row(y);
        for (int x = 0; x < width; ++x) {
            if ((pixels[x * channels] == value) != (equal != 0)) continue;
            x0 = std::min(x0, x);
            x1 = std::max(x1, x);
            y0 = std::min(y0, y);
            y1 = y;
        }
    }
    return x1 >= 0;
}

void LicImage::createRandom(int seed)
{
    if (seed > 0) std::srand(static_cast<unsigned int>(seed));
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < width * channels; ++i) row(y)[i] = static_cast<unsigned char>(std::rand());
}

void LicImage::colorToGray(LicImage* out)
{
    if (channels < 3 && (!out || out == this)) return;
    LicImage gray;
    if (channels < 3) {
        gray = *this;
    } else if (gray.setSize(width, height, 1)) {
        for (int y = 0; y < height; ++y) {
            const unsigned char* color = row(y);
            unsigned char* pixels = gray.row(y);
            for (int x = 0; x < width; ++x, color += channels)
                pixels[x] = static_cast<unsigned char>(0.3 * color[0] + 0.59 * color[1] + 0.11 * color[2]);
        }
    }
    gray.moveInto(out ? *out : *this);
}

void LicImage::brighten(int lo, int hi, LicImage* out)
{
    assert(lo != hi);
    if (out && !out->hasShapeOf(*this)) { // its memory, which goes, may be what is read here
        LicImage result = *this;
        result.brighten(lo, hi, nullptr);
        out->swap(result);
        return;
    }
    LicImage& target = out ? *out : *this;
    std::array<unsigned char, 256> table;
    for (std::int64_t p = 0; p < 256; ++p) {
        const std::int64_t spread = (p - lo) * 255 / (std::int64_t{hi} - lo);
        table[static_cast<std::size_t>(p)] =
            static_cast<unsigned char>(std::clamp<std::int64_t>(spread, 0, 255));
    }
    for (int y = 0; y < height; ++y) {
        const unsigned char* from = row(y);
        unsigned char* to = target.row(y);
        for (int i = 0; i < width * channels; ++i) to[i] = table[from[i]];
    }
}

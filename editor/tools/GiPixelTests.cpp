#include "tools/GiPixelTests.h"

#include "core/Gi.h"
#include "core/GiAcceptRow.h"
#include "core/GiMask.h"
#include "core/GiValueWindow.h"

#include <algorithm>
#include <cstring>

namespace {

/// The elements of a slice, pixel by pixel.
struct Pixels
{
    const unsigned char* first;
    long xStride, yStride; // in bytes

    /// `n` elements of a row side by side: in place where they lie so, else gathered.
    template <class T>
    const T* run(int column, int row, int n, std::vector<T>& gathered) const
    {
        const unsigned char* element = first + row * yStride + column * xStride;
        if (xStride == static_cast<long>(sizeof(T))) return reinterpret_cast<const T*>(element);
        gathered.resize(static_cast<std::size_t>(n));
        for (T& value : gathered) {
            value = *reinterpret_cast<const T*>(element);
            element += xStride;
        }
        return gathered.data();
    }
};

} // namespace

GiPixelTests::GiPixelTests(const Gi& owner, int o, int s) : gi(owner), orientation(o), slice(s) {}

void GiPixelTests::requireValue(const float* window)
{
    if (!gi.imageSlices.data()) return;
    unsigned char* first;
    long xStride, yStride;
    gi.imageSlices.accessSlice(orientation, slice, first, xStride, yStride);
    giDispatchImage(gi.primType, first,
                    [&](const auto* elements) { addValueTest(elements, xStride, yStride, window); });
}

template <class T>
void GiPixelTests::addValueTest(const T* elements, long xStride, long yStride, const float* ends)
{
    const Pixels pixels{reinterpret_cast<const unsigned char*>(elements), xStride, yStride};
    const GiValueWindow<T> window(ends);
    tests.push_back([=, gathered = std::vector<T>()](int column, int row, int n, unsigned char* f) mutable {
        if (window.isEmpty)
            std::fill_n(f, n, static_cast<unsigned char>(0));
        else
            giAcceptWindow(pixels.run(column, row, n, gathered), static_cast<unsigned long>(n), window.min,
                           window.max, f);
    });
}

void GiPixelTests::requireLabel(int label)
{
    if (!gi.labelSlices.data()) return;
    unsigned char* first;
    long xStride, yStride;
    gi.labelSlices.accessSlice(orientation, slice, first, xStride, yStride);
    const Pixels pixels{first, xStride, yStride};
    tests.push_back(
        [=, gathered = std::vector<unsigned char>()](int column, int row, int n, unsigned char* f) mutable {
            if (label < 0 || label > 255)
                std::fill_n(f, n, static_cast<unsigned char>(0));
            else
                giRefuseOtherLabels(pixels.run(column, row, n, gathered), static_cast<unsigned long>(n),
                                    static_cast<unsigned char>(label), f);
        });
}

const unsigned int* GiPixelTests::accept(int column, int row, int n)
{
    const auto numWords = static_cast<std::size_t>((n + 63) / 64);
    flags.assign(64 * numWords, 255);
    for (const Test& test : tests) test(column, row, n, flags.data());
    words.resize(numWords);
    giPackAccepted(flags.data(), numWords, words.data());
    bits.resize(2 * numWords);
    std::memcpy(bits.data(), words.data(), numWords * sizeof(std::uint64_t));
    return bits.data();
}

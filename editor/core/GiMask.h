#pragma once

#include "core/GiBitRows.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <cstdint>
#include <cstring>

/// Calls f with `data` as a pointer to the elements of an image, so that a loop is written once for all
/// types. Every code but 1 to 6 counts as unsigned 8 bit.
///
/// primType  Gi's own code of the element type
template <class F>
void giDispatchImage(int primType, const void* data, F&& f)
{
    switch (primType) {
    case 1:
        return f(static_cast<const short*>(data));
    case 2:
        return f(static_cast<const unsigned short*>(data));
    case 3:
        return f(static_cast<const int*>(data));
    case 4:
        return f(static_cast<const unsigned int*>(data));
    case 5:
        return f(static_cast<const float*>(data));
    case 6:
        return f(static_cast<const double*>(data));
    default:
        return f(static_cast<const unsigned char*>(data));
    }
}

/// Eight bytes that are 0 or 1 as eight bits, the first one lowest.
inline unsigned int giPackFlags(const unsigned char* flags)
{
    std::uint64_t bytes;
    std::memcpy(&bytes, flags, sizeof bytes);
    return static_cast<unsigned int>(bytes * 0x0102040810204080u >> 56);
}

/// Marks the pixels of a slice whose element, as a float, lies in a window.
///
/// mask     resized to width * height bits; bit y * width + x is set for a pixel inside. Bits are only ever
///          set, clearing is the caller's
/// dims     width and height
/// strides  from column to column and from row to row, in bytes
/// window   minimum and maximum, both included
/// throws   McMemoryException
template <class T>
void computeMask(McBitfield& mask, const int* dims, const int* strides, const T* data, const float* window)
{
    const auto width = static_cast<unsigned long>(dims[0]), height = static_cast<unsigned long>(dims[1]);
    mask.resize(width * height);
    const float low = window[0], high = window[1];
    McDArray<unsigned int> wordsOfRow(static_cast<int>((width + 31) / 32));
    McDArray<unsigned char> flagsOfRow(32 * wordsOfRow.size()); // 0 beyond the width
    unsigned int* const words = wordsOfRow.data();
    unsigned char* const flags = flagsOfRow.data();
    const auto* row = reinterpret_cast<const unsigned char*>(data);
    for (unsigned long y = 0; y < height; ++y, row += strides[1]) {
        if (strides[0] == static_cast<int>(sizeof(T))) { // a loop that the compiler can vectorise
            const T* elements = reinterpret_cast<const T*>(row);
            for (unsigned long x = 0; x < width; ++x) {
                const auto v = static_cast<float>(elements[x]);
                flags[x] = static_cast<unsigned char>((v >= low) & (v <= high));
            }
        } else {
            const unsigned char* element = row;
            for (unsigned long x = 0; x < width; ++x, element += strides[0]) {
                const auto v = static_cast<float>(*reinterpret_cast<const T*>(element));
                flags[x] = static_cast<unsigned char>((v >= low) & (v <= high));
            }
        }
        for (int i = 0; i < wordsOfRow.size(); ++i) {
            const unsigned char* f = flags + 32 * i;
            words[i] = giPackFlags(f) | giPackFlags(f + 8) << 8 | giPackFlags(f + 16) << 16 |
                       giPackFlags(f + 24) << 24;
        }
        giOrBits(mask.words(), y * width, words, 0, width);
    }
}

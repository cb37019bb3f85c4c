#include "core/mcFloodFillSlice.h"

#include "core/GiAcceptRow.h"
#include "core/GiBitRows.h"
#include "core/GiSliceFill.h"
#include "mc/McBitfield.h"
#include "mc/McDArray.h"

#include <algorithm>
#include <bit>
#include <type_traits>
#include <vector>

namespace {

/// Elements of a row side by side: in place where they lie so, else gathered.
template <class T>
const T* rowOf(const McData2D<const T>& data, long y, std::vector<T>& gathered)
{
    const T* element = data.data() + y * data.yStride();
    const long step = data.xStride();
    if (step == 1) return element;
    gathered.resize(static_cast<std::size_t>(data.width()));
    for (T& value : gathered) {
        value = *element;
        element += step;
    }
    return gathered.data();
}

template <class T>
GiSliceFill::AcceptRow rowTest(const McFillSlice<T>& slice)
{
    const auto width = static_cast<unsigned long>(slice.values.width()), words = (width + 63) / 64;
    return [=, flags = std::vector<unsigned char>(64 * words), values = std::vector<T>(),
            labels = std::vector<unsigned char>()](unsigned long row, std::uint64_t* accepted) mutable {
        const auto y = static_cast<long>(row);
        const T* elements = rowOf(slice.values, y, values);
        if constexpr (std::is_same_v<T, float>) {
            if (!slice.labels.data()) {
                giAcceptWindowBits(elements, width, slice.min, slice.max, accepted);
                return;
            }
        }
        giAcceptWindow(elements, width, slice.min, slice.max, flags.data());
        if (slice.labels.data())
            giRefuseOtherLabels(rowOf(slice.labels, y, labels), width,
                                static_cast<unsigned char>(slice.label), flags.data());
        giPackAccepted(flags.data(), words, accepted);
    };
}

/// All pixels of the outermost rows and columns, as far as they are accepted.
void addBorderSeeds(GiSliceFill& fill, unsigned long width, unsigned long height)
{
    const unsigned long last = width - 1;
    for (unsigned long y = 0; y < height; ++y) {
        if (y == 0 || y + 1 == height) {
            for (unsigned long i = 0; i <= last / 64; ++i) fill.addSeeds(y, i, ~std::uint64_t{0});
        } else {
            fill.addSeeds(y, 0, 1);
            fill.addSeeds(y, last / 64, std::uint64_t{1} << (last % 64));
        }
    }
}

} // namespace

template <class T>
int mcFloodFillSlice(const McFillSlice<T>& slice, int x, int y, McBitfield& marks, int* box)
{
    const auto width = static_cast<unsigned long>(slice.values.width()),
               height = static_cast<unsigned long>(slice.values.height());
    marks.resize(0); // fresh memory comes cleared
    marks.resize(width * height);
    box[0] = box[2] = x;
    box[1] = box[3] = y;
    if (x < 0 || y < 0 || x >= slice.values.width() || y >= slice.values.height()) return 0;

    GiSliceFill fill(width, height, rowTest(slice));
    const auto column = static_cast<unsigned long>(x);
    fill.addSeeds(static_cast<unsigned long>(y), column / 64, std::uint64_t{1} << (column % 64));
    fill.fill();
    fill.copyTo(marks);
    fill.bounds(box);
    return static_cast<int>(fill.count());
}

void mcFillInterior(McBitfield& bits, int width, const int* box)
{
    const auto left = static_cast<unsigned long>(box[0]), top = static_cast<unsigned long>(box[1]);
    const auto columns = static_cast<unsigned long>(box[2] - box[0] + 1),
               rows = static_cast<unsigned long>(box[3] - box[1] + 1);
    const auto firstOf = [&](unsigned long row) {
        return (top + row) * static_cast<unsigned long>(width) + left;
    };
    const auto clearPixels = [&](unsigned long row, std::uint64_t* clear) {
        for (unsigned long i = 0; i < columns; i += 64) {
            const unsigned long n = std::min(columns - i, 64ul);
            clear[i / 64] = ~giLoadBits(bits.words(), firstOf(row) + i, n) & (~std::uint64_t{0} >> (64 - n));
        }
    };
    GiSliceFill outside(columns, rows, clearPixels);
    addBorderSeeds(outside, columns, rows);
    outside.fill();

    McDArray<std::uint64_t> clear(static_cast<int>((columns + 63) / 64));
    for (unsigned long row = 0; row < rows; ++row) {
        clearPixels(row, clear.data());
        const std::uint64_t* reached = outside.reachedIn(row);
        for (unsigned long i = 0; i < columns; i += 64) {
            std::uint64_t holes = clear[static_cast<int>(i / 64)] & ~reached[i / 64];
            for (; holes != 0; holes &= holes - 1)
                bits.set(firstOf(row) + i + static_cast<unsigned long>(std::countr_zero(holes)));
        }
    }
}

template int mcFloodFillSlice(const McFillSlice<unsigned char>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<short>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<unsigned short>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<int>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<unsigned int>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<float>&, int, int, McBitfield&, int*);
template int mcFloodFillSlice(const McFillSlice<double>&, int, int, McBitfield&, int*);

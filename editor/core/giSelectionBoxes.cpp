#include "core/giSelectionBoxes.h"

#include "core/GiBitRows.h"
#include "core/GiOrientation.h"
#include "core/GiSelection3D.h"

std::vector<McBox2i> giSelectionBoxes(const GiSelection3D& selection, int orientation)
{
    std::vector<McBox2i> boxes(static_cast<std::size_t>(selection.getNumSlices(orientation)));
    const unsigned int* words = selection.bits.words();
    const unsigned long nx = selection.dims[0], ny = selection.dims[1], rows = ny * selection.dims[2];
    const auto number = [](unsigned long i) { return static_cast<int>(i); };
    for (unsigned long row = 0; row < rows; ++row) {
        const unsigned long begin = row * nx, end = begin + nx;
        unsigned long bit = giFindSet(words, begin, end);
        if (bit == end) continue;
        const int y = number(row % ny), z = number(row / ny);
        if (giSliceAxis(orientation) == 0) {
            for (; bit < end; bit = giFindSet(words, bit + 1, end)) boxes[bit - begin].extendBy(y, z);
            continue;
        }
        const int left = number(bit - begin), right = number(giFindLastSet(words, begin, end) - begin);
        if (giSliceAxis(orientation) == 1)
            boxes[static_cast<std::size_t>(y)].extendBy(McBox2i(left, z, right, z));
        else
            boxes[static_cast<std::size_t>(z)].extendBy(McBox2i(left, y, right, y));
    }
    return boxes;
}

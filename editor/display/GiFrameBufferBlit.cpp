// Frame buffer: the way of a slice from data pixels into zoomed ones, and scrolling. A row of data pixels
// is looked up and stretched once; the screen rows that show the same data are copies.

#include "display/GiFrameBuffer.h"

#include "core/Gi.h"
#include "core/GiBitRows.h"
#include "hx/HxMessage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kMessageBlit = 595; // the number by which the message has always been known

/// Widest run that is stored in one go; a row buffer has this much room at its end.
constexpr int kBurst = 8;

/// Stretches data pixels into screen pixels. `line` needs room for kBurst pixels beyond the sum of the
/// counts.
void stretch(const unsigned int* row, const McDArray<int>& counts, unsigned int* line)
{
    for (const int count : counts) {
        const unsigned int pixel = *row++;
        // Always a whole burst, whose surplus the next pixel overwrites: no branch per screen pixel.
        for (int k = 0; k < kBurst; ++k) line[k] = pixel;
        if (count > kBurst) std::fill(line + kBurst, line + count, pixel);
        line += count;
    }
}

bool isOneToOne(const McDArray<int>& counts)
{
    return std::all_of(counts.begin(), counts.end(), [](int n) { return n == 1; });
}

} // namespace

GiFrameBuffer::Function GiFrameBuffer::blitFunction() const
{
    const bool isShownByColor =
        selection && !selection->selectionBox.isEmpty() && (!gi || gi->selectionDrawStyle == 0);
    return isShownByColor ? function : kDraw;
}

/// Blends the selected pixels of a data row.
void GiFrameBuffer::blendRow(unsigned int* row, int firstColumn, int count, int y) const
{
    const GiSelection2D& s = *selection;
    if (y < 0 || static_cast<unsigned long>(y) >= s.height) return;
    const int n = std::min(count, static_cast<int>(s.width) - firstColumn);
    if (n <= 0) return;
    if (s.xStride != 1) {
        for (int i = 0; i < n; ++i)
            if (s.isSet(firstColumn + i, y)) row[i] = blended(row[i]);
        return;
    }
    const unsigned long first =
        static_cast<unsigned long>(y) * s.yStride + static_cast<unsigned long>(firstColumn) + s.offset;
    const unsigned long end = first + static_cast<unsigned long>(n);
    const unsigned int* words = s.bits->words();
    for (unsigned long i = giFindSet(words, first, end); i < end; i = giFindSet(words, i + 1, end))
        row[i - first] = blended(row[i - first]);
}

void GiFrameBuffer::putImageGrey8Zoomed(const unsigned int* image, unsigned long, unsigned long,
                                        unsigned long imageRowBytes)
{
    if (clipBox.isEmpty() || bytesPerPixel != 4) return;
    const Function mode = blitFunction();
    if (mode != kDraw && mode != kBlend) {
        HxMessage::getTheMsg()->printf("Line %d: unsupported function", kMessageBlit);
        return;
    }
    const int firstColumn = dataColumn(clipBox.xmin), lastColumn = dataColumn(clipBox.xmax);
    const int numColumns = lastColumn - firstColumn + 1;
    McDArray<int> counts(numColumns);
    for (int x = clipBox.xmin; x <= clipBox.xmax; ++x) ++counts[dataColumn(x) - firstColumn];
    const bool copyOnly = isOneToOne(counts);

    const int width = clipBox.width();
    const auto bytes = static_cast<std::size_t>(width) * sizeof(unsigned int);
    McDArray<unsigned int> data(numColumns);
    McDArray<unsigned int> line(width + kBurst);
    const int left = flipX ? memSize.x - 1 - (clipBox.xmax - offset.x) : clipBox.xmin - offset.x;
    const auto target = [&](int y) {
        const int my = y - offset.y;
        return pixelAt(left, flipY ? memSize.y - 1 - my : my);
    };

    for (int y = clipBox.ymin; y <= clipBox.ymax;) {
        const int row = dataRow(y);
        const auto* start =
            reinterpret_cast<const unsigned int*>(reinterpret_cast<const char*>(image) +
                                                  static_cast<unsigned long>(row) * imageRowBytes) +
            firstColumn;
        if (mode == kBlend) {
            std::copy_n(start, numColumns, data.data());
            blendRow(data.data(), firstColumn, numColumns, row);
            start = data.data();
        }
        if (!copyOnly) {
            stretch(start, counts, line.data());
            start = line.data();
        }
        unsigned int* first = target(y);
        if (flipX)
            std::reverse_copy(start, start + width, first);
        else
            std::memcpy(first, start, bytes);
        for (++y; y <= clipBox.ymax && dataRow(y) == row; ++y) std::memcpy(target(y), first, bytes);
    }
}

void GiFrameBuffer::scrollHorizontal(int columns)
{
    const int n = memSize.x - std::abs(columns);
    if (bytesPerPixel != 4 || n <= 0) return;
    for (int y = 0; y < memSize.y; ++y)
        std::memmove(pixelAt(std::max(columns, 0), y), pixelAt(std::max(-columns, 0), y),
                     static_cast<std::size_t>(n) * sizeof(unsigned int));
}

void GiFrameBuffer::scrollVertical(int rows)
{
    const int n = memSize.y - std::abs(rows);
    if (bytesPerPixel != 4 || n <= 0) return;
    std::memmove(pixelAt(0, std::max(rows, 0)), pixelAt(0, std::max(-rows, 0)),
                 static_cast<std::size_t>(n) * bytesPerRow);
}

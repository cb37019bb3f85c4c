// Frame buffer: the way of a slice from data pixels into zoomed ones, and scrolling. A row of data pixels
// is looked up and stretched once; the screen rows that show the same data are copies.

#include "display/GiFrameBuffer.h"

#include "core/Gi.h"
#include "display/GiSelectionBlend.h"
#include "hx/HxMessage.h"
#include "mc/McSimd.h"

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

MC_TARGET_CLONES
void pick(const unsigned int* row, const int* columns, int n, unsigned int* line)
{
    for (int i = 0; i < n; ++i) line[i] = row[columns[i]];
}

/// How the screen columns of a clip box show data columns.
struct ColumnMap
{
    ColumnMap(const GiFrameBuffer& buffer, const McBox2i& clip)
        : first(buffer.dataColumn(clip.xmin)), columns(clip.width())
    {
        counts.resize(buffer.dataColumn(clip.xmax) - first + 1);
        for (int i = 0; i < columns.size(); ++i) {
            columns[i] = buffer.dataColumn(clip.xmin + i) - first;
            ++counts[columns[i]];
        }
        const auto [least, most] = std::minmax_element(counts.begin(), counts.end());
        repeats = *most > 1;
        drops = *least < 1;
    }

    int first;             // data column
    McDArray<int> columns; // by screen column: the data column, counted from the first
    McDArray<int> counts;  // by data column: its screen columns
    bool repeats, drops;   // some data column is wider than one screen column, or is not seen
};

/// Makes screen rows of data rows.
class RowMaker
{
public:
    /// blend  null if the selection is not shown
    RowMaker(const ColumnMap& columnMap, const GiSelection2D* pixels, const GiSelectionBlend* mixed)
        : map(columnMap),
          selection(pixels),
          blend(mixed),
          line(map.columns.size() + kBurst),
          data(blend && map.repeats ? map.counts.size() : 0),
          marks(blend ? std::max(map.columns.size(), map.counts.size()) : 0)
    {
    }

    /// image  data row `row`, from its first column on
    /// returns the screen row, in the image itself where they are the same
    const unsigned int* make(const unsigned int* image, int row)
    {
        image += map.first;
        if (map.repeats) return stretched(image, row);
        const int n = map.columns.size();
        if (!map.drops && !blend) return image;
        if (!map.drops) {
            std::copy_n(image, n, line.data());
            blend->mixRow(line.data(), *selection, map.first, row, n, marks.data());
            return line.data();
        }
        // Pixels that are not seen are left out first: nothing more is spent on them.
        pick(image, map.columns.data(), n, line.data());
        if (blend)
            blend->mixPicked(line.data(), *selection, map.first, row, map.columns.data(), n, marks.data());
        return line.data();
    }

private:
    /// Pixels are blended once, before they are repeated.
    const unsigned int* stretched(const unsigned int* image, int row)
    {
        const int n = map.counts.size();
        if (blend) {
            std::copy_n(image, n, data.data());
            blend->mixRow(data.data(), *selection, map.first, row, n, marks.data());
            image = data.data();
        }
        stretch(image, map.counts, line.data());
        return line.data();
    }

    const ColumnMap& map;
    const GiSelection2D* selection;
    const GiSelectionBlend* blend;
    McDArray<unsigned int> line, data;
    McDArray<int> marks;
};

} // namespace

GiFrameBuffer::Function GiFrameBuffer::blitFunction() const
{
    const bool isShownByColor =
        selection && !selection->selectionBox.isEmpty() && (!gi || gi->selectionDrawStyle == 0);
    return isShownByColor ? function : kDraw;
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
    const ColumnMap columns(*this, clipBox);
    const GiSelectionBlend blend(selectionPixel, selectionAlpha);
    RowMaker rows(columns, selection, mode == kBlend ? &blend : nullptr);

    const auto bytes = static_cast<std::size_t>(clipBox.width()) * sizeof(unsigned int);
    const int left = flipX ? memSize.x - 1 - (clipBox.xmax - offset.x) : clipBox.xmin - offset.x;
    const auto target = [&](int y) {
        const int my = y - offset.y;
        return pixelAt(left, flipY ? memSize.y - 1 - my : my);
    };
    for (int y = clipBox.ymin; y <= clipBox.ymax;) {
        const int row = dataRow(y);
        const unsigned int* line =
            rows.make(reinterpret_cast<const unsigned int*>(reinterpret_cast<const char*>(image) +
                                                            static_cast<unsigned long>(row) * imageRowBytes),
                      row);
        unsigned int* first = target(y);
        if (flipX)
            std::reverse_copy(line, line + clipBox.width(), first);
        else
            std::memcpy(first, line, bytes);
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

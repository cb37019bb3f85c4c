#include "display/GiRegionDrawing.h"

#include "display/GiFrameBuffer.h"
#include "mc/McDArray.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::uint64_t kEveryByte = 0x0101010101010101u;

std::uint64_t load8(const unsigned char* bytes)
{
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The first place from i on, before `end`, whose byte differs from `value`; else `end`.
int skipEqual(const unsigned char* bytes, int i, int end, unsigned char value)
{
    const std::uint64_t eight = kEveryByte * value;
    while (i + 8 <= end && load8(bytes + i) == eight) i += 8;
    while (i < end && bytes[i] == value) ++i;
    return i;
}

/// The first place from i on, before `end`, with this value; else `end`.
int findEqual(const unsigned char* bytes, int i, int end, unsigned char value)
{
    const void* found = std::memchr(bytes + i, value, static_cast<std::size_t>(end - i));
    return found ? static_cast<int>(static_cast<const unsigned char*>(found) - bytes) : end;
}

/// The block of screen pixels that a run of data pixels of one row covers.
struct Block
{
    int x0, x1, y0, y1;
};

/// A place not before `from` whose remainder by `step` is that of `phase`.
int alignedTo(int from, int phase, int step)
{
    const int ahead = (phase - from) % step;
    return from + (ahead < 0 ? ahead + step : ahead);
}

void fillBlock(GiFrameBuffer& frameBuffer, const Block& b, int style)
{
    // Only rows on screen; the columns are cut by the buffer.
    const int last = std::min(b.y1, frameBuffer.clipBox.ymax);
    for (int y = std::max(b.y0, frameBuffer.clipBox.ymin); y <= last; ++y) {
        switch (style) {
        case kStyleHatched: // x + y is a multiple of 5
            frameBuffer.writeRow(alignedTo(b.x0, -y, 5), b.x1, y, 5);
            break;
        case kStyleDotted: // one of x and y is odd
            frameBuffer.writeRow(alignedTo(b.x0, y + 1, 2), b.x1, y, 2);
            break;
        case kStyleLightDots: // both are even, and just one of their halves is odd
            if (y % 2 == 0) frameBuffer.writeRow(alignedTo(b.x0, y % 4 == 0 ? 2 : 0, 4), b.x1, y, 4);
            break;
        default:
            return;
        }
    }
}

/// Three neighbouring rows of a slice, each with the columns of the range and one more on either side, as
/// far as there are any.
class RowWindow
{
public:
    RowWindow(const GiByteRows& source, const McBox2i& range)
        : rows(source),
          firstColumn(std::max(range.xmin - 1, 0)),
          lastColumn(std::min(range.xmax + 1, source.width - 1))
    {
        for (McDArray<unsigned char>& buffer : buffers) buffer.resize(lastColumn - firstColumn + 1);
    }

    /// Null outside the slice. Addressed by column.
    const unsigned char* row(int y)
    {
        if (y < 0 || y >= rows.height) return nullptr;
        Cached& entry = cache[y % 3];
        if (entry.y != y) {
            entry.y = y;
            entry.values = rows.read(y, firstColumn, lastColumn, buffers[y % 3].data());
        }
        return entry.values;
    }
    int first() const { return firstColumn; }

private:
    struct Cached
    {
        int y = -1;
        const unsigned char* values = nullptr;
    };

    const GiByteRows& rows;
    int firstColumn, lastColumn;
    McDArray<unsigned char> buffers[3];
    Cached cache[3];
};

class RegionDrawing
{
public:
    RegionDrawing(GiFrameBuffer& target, const GiByteRows& source, const McBox2i& box,
                  const GiRegionLook& styles)
        : frameBuffer(target), rows(source), range(box), look(styles), window(source, box)
    {
    }

    void draw()
    {
        for (int y = range.ymin; y <= range.ymax; ++y)
            if (frameBuffer.rowHeight(y) > 0) drawRow(y);
    }

private:
    void drawRow(int y)
    {
        // Values are addressed from the window's first column on.
        const unsigned char* values = window.row(y);
        const int begin = range.xmin - window.first(), end = range.xmax + 1 - window.first();
        for (int i = begin; i < end;) {
            const unsigned char value = values[i];
            const int stop = skipEqual(values, i, end, value);
            if (look.styles[value] != kStyleHidden) drawRun(y, values, i, stop, value);
            i = stop;
        }
    }

    void drawRun(int y, const unsigned char* values, int i, int stop, unsigned char value)
    {
        if (value != colorOf) {
            const unsigned char* c = look.colors[value];
            frameBuffer.setColor(c[0], c[1], c[2]);
            colorOf = value;
        }
        const Block run = block(y, i, stop);
        drawEdge(window.row(y - 1), i, stop, value, y, run.y0);
        drawEdge(window.row(y + 1), i, stop, value, y, run.y1);
        const int first = window.first() + i, last = window.first() + stop - 1;
        if ((first == 0 || values[i - 1] != value) && frameBuffer.columnWidth(first) > 0)
            frameBuffer.writeColumn(run.x0, run.y0, run.y1);
        if ((last == rows.width - 1 || values[stop] != value) && frameBuffer.columnWidth(last) > 0)
            frameBuffer.writeColumn(run.x1, run.y0, run.y1);
        fillBlock(frameBuffer, run, look.styles[value]);
    }

    /// Draws screen row `screenY` of the pixels whose neighbour in another row has another value.
    void drawEdge(const unsigned char* neighbours, int i, int stop, unsigned char value, int y, int screenY)
    {
        if (!neighbours) {
            const Block b = block(y, i, stop);
            frameBuffer.writeRow(b.x0, b.x1, screenY);
            return;
        }
        while ((i = skipEqual(neighbours, i, stop, value)) < stop) {
            const int end = findEqual(neighbours, i, stop, value);
            const Block b = block(y, i, end);
            frameBuffer.writeRow(b.x0, b.x1, screenY);
            i = end;
        }
    }

    Block block(int y, int i, int stop) const
    {
        const int first = window.first() + i, last = window.first() + stop - 1;
        return {frameBuffer.columnStart(first),
                frameBuffer.columnStart(last) + frameBuffer.columnWidth(last) - 1, frameBuffer.rowStart(y),
                frameBuffer.rowStart(y) + frameBuffer.rowHeight(y) - 1};
    }

    GiFrameBuffer& frameBuffer;
    const GiByteRows& rows;
    const McBox2i range;
    const GiRegionLook& look;
    RowWindow window;
    int colorOf = -1; // the value whose colour is the current one
};

} // namespace

void giDrawRegions(GiFrameBuffer& frameBuffer, const GiByteRows& rows, const McBox2i& range,
                   const GiRegionLook& look)
{
    RegionDrawing(frameBuffer, rows, range, look).draw();
}

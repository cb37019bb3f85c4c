// Label overlay: how it looks, and the key that changes it.

#include "display/GiLabelImage.h"

#include "core/Gi.h"
#include "core/GiBitRows.h"
#include "display/GiFrameBuffer.h"
#include "display/GiRegionDrawing.h"
#include "mc/McEvent.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr int kStyleKey = 'd';
constexpr long kColumnsAhead = 32; // twice as far was slower, see bench/display

class LabelRows : public GiByteRows
{
public:
    explicit LabelRows(const GiLabelSlice& slice) : labels(slice)
    {
        width = static_cast<int>(slice.width);
        height = static_cast<int>(slice.height);
    }

    const unsigned char* read(int y, int x0, int x1, unsigned char* buffer) const override
    {
        const long step = labels.xStride;
        const unsigned char* p = labels.memory + y * static_cast<long>(labels.yStride) + x0 * step;
        if (step == 1) return p;
        for (int i = 0; i <= x1 - x0; ++i, p += step) {
            // Each label lies in a cache line of its own, which is asked for in time; beyond the volume in
            // vain.
            __builtin_prefetch(p + kColumnsAhead * step);
            buffer[i] = *p;
        }
        return buffer;
    }

private:
    const GiLabelSlice& labels;
};

/// 1 for a selected pixel, else 0.
class SelectionRows : public GiByteRows
{
public:
    explicit SelectionRows(const GiSelection2D& pixels) : selection(pixels)
    {
        width = static_cast<int>(pixels.width);
        height = static_cast<int>(pixels.height);
    }

    const unsigned char* read(int y, int x0, int x1, unsigned char* buffer) const override
    {
        const int n = x1 - x0 + 1;
        if (selection.xStride != 1) {
            for (int i = 0; i < n; ++i) buffer[i] = selection.isSet(x0 + i, y);
            return buffer;
        }
        const unsigned long first = static_cast<unsigned long>(y) * selection.yStride +
                                    static_cast<unsigned long>(x0) + selection.offset;
        const unsigned int* words = selection.bits->words();
        for (int i = 0; i < n; i += 64) {
            const int left = std::min(n - i, 64);
            std::uint64_t bits =
                giLoadBits(words, first + static_cast<unsigned long>(i), static_cast<unsigned long>(left));
            for (int k = 0; k < left; k += 8, bits >>= 8) {
                const std::uint64_t bytes = bytesOf(bits & 255);
                std::memcpy(buffer + i + k, &bytes, static_cast<std::size_t>(std::min(left - k, 8)));
            }
        }
        return buffer;
    }

private:
    /// Eight bits as eight bytes of 0 or 1, the lowest one first.
    static std::uint64_t bytesOf(std::uint64_t bits)
    {
        // Each byte keeps the bit that is its own, and carries it to its top.
        const std::uint64_t own = (bits * 0x0101010101010101u) & 0x8040201008040201u;
        return ((own + 0x7F7F7F7F7F7F7F7Fu) >> 7) & 0x0101010101010101u;
    }

    const GiSelection2D& selection;
};

McBox2i cutTo(const McBox2i& range, const GiByteRows& rows)
{
    return range.intersected(McBox2i(0, 0, rows.width - 1, rows.height - 1));
}

} // namespace

void GiLabelImage::render(GiFrameBuffer* frameBuffer, const McBox2i& box)
{
    if (!view.memory) return;
    McBox2i range(frameBuffer->dataColumn(box.xmin), frameBuffer->dataRow(box.ymin),
                  frameBuffer->dataColumn(box.xmax), frameBuffer->dataRow(box.ymax));
    if (range.xmax < range.xmin) std::swap(range.xmin, range.xmax);
    if (range.ymax < range.ymin) std::swap(range.ymin, range.ymax);

    const LabelRows labels(view);
    const McBox2i labelled = cutTo(range, labels);
    if (!labelled.isEmpty())
        giDrawRegions(*frameBuffer, labels, labelled, GiRegionLook{gi->drawStyle2D, gi->materialColors});

    const GiSelection2D* selection = frameBuffer->selection;
    if (gi->selectionDrawStyle == kStyleHidden || !selection || selection->selectionBox.isEmpty()) return;
    const SelectionRows selected(*selection);
    const McBox2i marked = cutTo(range, selected);
    if (marked.isEmpty()) return;
    const unsigned char styles[2] = {kStyleHidden, gi->selectionDrawStyle};
    const unsigned char colors[2][3] = {
        {0, 0, 0}, {gi->selectionColor[0], gi->selectionColor[1], gi->selectionColor[2]}};
    giDrawRegions(*frameBuffer, selected, marked, GiRegionLook{styles, colors});
}

int GiLabelImage::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    const auto* key = event->as<McKeyboardEvent>();
    if (!key || key->released || key->key != kStyleKey) return 0;
    if (key->shift || key->alt)
        cycleStyleAt(*frameBuffer, key->x, key->y);
    else
        cycleAllStyles();
    return 1;
}

/// Hidden materials stay hidden.
void GiLabelImage::cycleAllStyles()
{
    const int next = gi->drawStyle2D[1] + 1 < kNumStyles ? gi->drawStyle2D[1] + 1 : kStyleOutline;
    for (unsigned char& style : gi->drawStyle2D)
        if (style != kStyleHidden) style = static_cast<unsigned char>(next);
    gi->redraw();
}

void GiLabelImage::cycleStyleAt(const GiFrameBuffer& frameBuffer, int x, int y)
{
    const McBox2i image(0, 0, frameBuffer.zoomedSize.x - 1, frameBuffer.zoomedSize.y - 1);
    if (!image.contains(x, y) || !gi->labelSlices.data()) return;
    const McVec3i p = gi->getPoint3D(frameBuffer.dataColumn(x), frameBuffer.dataRow(y), frameBuffer.viewer);
    const unsigned long* dims = gi->labelSlices.dims();
    const auto* labels = static_cast<const unsigned char*>(gi->labelSlices.data());
    const unsigned char label =
        labels[static_cast<unsigned long>(p.x) +
               dims[0] * (static_cast<unsigned long>(p.y) + dims[1] * static_cast<unsigned long>(p.z))];
    unsigned char& style = gi->drawStyle2D[label];
    style = static_cast<unsigned char>((style + 1) < kNumStyles ? style + 1 : 0);
    gi->redraw();
}

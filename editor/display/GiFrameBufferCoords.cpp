// Frame buffer: the three coordinate systems and the tables between them.

#include "display/GiFrameBuffer.h"

#include "hx/HxMessage.h"

#include <algorithm>

namespace {

int sum(const McDArray<int>& table)
{
    int total = 0;
    for (const int n : table) total += n;
    return total;
}

void take(McDArray<int>& table, const int* entries, int n)
{
    table.clear();
    if (!entries) return;
    table.resize(n);
    std::copy_n(entries, n, table.data());
}

void spreadEvenly(McDArray<int>& table, int n, int zoomed)
{
    table.resize(n);
    for (int i = 0; i < n; ++i)
        table[i] = static_cast<int>((i + 1l) * zoomed / n) - static_cast<int>(long(i) * zoomed / n);
}

/// Starts of the blocks of one axis.
void addUp(const McDArray<int>& replic, McDArray<int>& starts)
{
    starts.resize(replic.size());
    for (int i = 0, at = 0; i < replic.size(); at += replic[i++]) starts[i] = at;
}

/// Data coordinate and sub-pixel of each memory pixel of one axis.
struct Lookup
{
    McDArray<int>& original;
    McDArray<int>& subPixel;

    void fill(const McDArray<int>& starts, const McDArray<int>& replic, int offset, int memSize) const
    {
        original.resize(memSize);
        subPixel.resize(memSize);
        const int n = std::min(starts.size(), replic.size());
        if (n == 0) {
            std::fill(original.begin(), original.end(), 0);
            std::fill(subPixel.begin(), subPixel.end(), 0);
            return;
        }
        int c =
            static_cast<int>(std::upper_bound(starts.begin(), starts.begin() + n, offset) - starts.begin()) -
            1;
        c = std::max(c, 0);
        // kept: a window that begins inside the last data pixel counts its sub-pixels from 0. The
        // pixel is shown alike, only positions inside it are told shifted.
        int sub = c < n - 1 ? replic[c] - (starts[c + 1] - offset) : 0;
        for (int m = 0; m < memSize; ++m) {
            while (sub >= replic[c] && c < n - 1) {
                ++c;
                sub = 0;
            }
            original[m] = c;
            subPixel[m] = sub++;
        }
    }
};

int zoomedPosition(const McDArray<int>& starts, const McDArray<int>& replic, float p)
{
    if (starts.isEmpty()) return 0;
    const int whole = static_cast<int>(p);
    const int i = std::clamp(whole, 0, starts.size() - 1);
    return starts[i] +
           static_cast<int>(static_cast<float>(replic[i]) * (p - static_cast<float>(whole)) + 0.5);
}

float dataPosition(const McDArray<int>& original, const McDArray<int>& subPixel, const McDArray<int>& replic,
                   int m)
{
    if (original.isEmpty()) return 0;
    const int i = std::clamp(m, 0, original.size() - 1);
    const int c = original[i];
    const int size = c < replic.size() ? replic[c] : 0;
    const float within = size > 0 ? static_cast<float>(subPixel[i]) / static_cast<float>(size) : 0;
    return static_cast<float>(c) + within;
}

} // namespace

void GiFrameBuffer::resize(const McVec2i& size, const int* columns, const int* rows)
{
    const McVec2i center(entry(originalCoordsX, memSize.x / 2), entry(originalCoordsY, memSize.y / 2));
    const McVec2i formerOffset = offset, formerZoomed = zoomedSize;

    take(replicX, columns, size.x);
    take(replicY, rows, size.y);
    originalSize = size;
    if (columns) zoomedSize.x = sum(replicX);
    if (rows) zoomedSize.y = sum(replicY);
    prepareCoordLookups1();
    setMemSize(McVec2i(std::min(zoomedSize.x, memSize.x), std::min(zoomedSize.y, memSize.y)));

    if (zoomedSize == formerZoomed) {
        offset = formerOffset;
    } else {
        offset.x = std::max(0, columnStart(std::min(center.x, size.x - 1)) - memSize.x / 2);
        offset.y = std::max(0, rowStart(std::min(center.y, size.y - 1)) - memSize.y / 2);
    }
    offset.x = std::min(offset.x, zoomedSize.x - memSize.x);
    offset.y = std::min(offset.y, zoomedSize.y - memSize.y);
    prepareCoordLookups2();
}

void GiFrameBuffer::prepareCoordLookups1()
{
    if (replicX.size() != originalSize.x) spreadEvenly(replicX, originalSize.x, zoomedSize.x);
    if (replicY.size() != originalSize.y) spreadEvenly(replicY, originalSize.y, zoomedSize.y);
    addUp(replicX, zoomedCoordsX);
    addUp(replicY, zoomedCoordsY);
}

void GiFrameBuffer::prepareCoordLookups2()
{
    if (zoomedCoordsX.size() != originalSize.x)
        HxMessage::getTheMsg()->printf(
            "Error: prepareCoordLookups2: zoomedCoordsX.size()!=originalSize.x (%d!=%d)\n",
            zoomedCoordsX.size(), originalSize.x);
    Lookup{originalCoordsX, subPixelX}.fill(zoomedCoordsX, replicX, offset.x, memSize.x);
    Lookup{originalCoordsY, subPixelY}.fill(zoomedCoordsY, replicY, offset.y, memSize.y);
}

McBox2i GiFrameBuffer::screenBox(const McBox2i& b) const
{
    const auto last = [](int start, int size) { return size > 0 ? start + size - 1 : start; };
    const int x0 = columnStart(b.xmin), x1 = last(columnStart(b.xmax), columnWidth(b.xmax));
    const int y0 = rowStart(b.ymin), y1 = last(rowStart(b.ymax), rowHeight(b.ymax));
    return McBox2i(std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1));
}

McVec2i GiFrameBuffer::zoomf(const McVec2f& p) const
{
    return McVec2i(zoomedPosition(zoomedCoordsX, replicX, p.x), zoomedPosition(zoomedCoordsY, replicY, p.y));
}

McVec2f GiFrameBuffer::unzoomf(const McVec2i& p) const
{
    return McVec2f(dataPosition(originalCoordsX, subPixelX, replicX, p.x - offset.x),
                   dataPosition(originalCoordsY, subPixelY, replicY, p.y - offset.y));
}

#include "display/GiMemoryFrameBuffer.h"

#include "mc/McMemoryException.h"

#include <algorithm>

GiMemoryFrameBuffer::GiMemoryFrameBuffer()
{
    setMemSize(windowSides);
    clear();
}

void GiMemoryFrameBuffer::resize(const McVec2i& size, const int* columns, const int* rows)
{
    GiFrameBuffer::resize(size, columns, rows);
    fitMemory();
}

/// A slice that has grown fills the window again, as far as it can.
void GiMemoryFrameBuffer::fitMemory()
{
    const McVec2i fitting(std::min(windowSides.x, zoomedSize.x), std::min(windowSides.y, zoomedSize.y));
    // The middle of the picture stays in the middle.
    const McVec2i middle(offset.x + memSize.x / 2, offset.y + memSize.y / 2);
    if (!(fitting == memSize)) {
        setMemSize(fitting);
        clear();
        offset = McVec2i(middle.x - memSize.x / 2, middle.y - memSize.y / 2);
    }
    offset.x = std::clamp(offset.x, 0, zoomedSize.x - memSize.x);
    offset.y = std::clamp(offset.y, 0, zoomedSize.y - memSize.y);
    prepareCoordLookups2();
}

void GiMemoryFrameBuffer::setOffset(const McVec2i& p)
{
    offset.x = std::clamp(p.x, 0, std::max(0, zoomedSize.x - memSize.x));
    offset.y = std::clamp(p.y, 0, std::max(0, zoomedSize.y - memSize.y));
    prepareCoordLookups2();
    render(nullptr);
    paste();
}

void GiMemoryFrameBuffer::setWindowSize(const McVec2i& size)
{
    const McVec2i former = windowSides;
    windowSides = McVec2i(std::max(size.x, 1), std::max(size.y, 1));
    try {
        fitWindow();
    } catch (const McMemoryException&) {
        windowSides = former;
        fitWindow();
        throw;
    }
    render(nullptr);
    paste();
}

void GiMemoryFrameBuffer::fitWindow()
{
    if (originalSize.x > 0 && originalSize.y > 0) {
        fitMemory();
    } else {
        setMemSize(windowSides);
        clear();
        prepareCoordLookups2();
    }
}

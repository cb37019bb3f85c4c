#include "tools/giDrawOutline.h"

#include "display/GiFrameBuffer.h"

#include <algorithm>

void giSetOutlineColor(GiFrameBuffer& frameBuffer)
{
    frameBuffer.setColor(255, 192, 0);
    frameBuffer.setFunction(GiFrameBuffer::kDraw);
}

void giDrawSegment(GiFrameBuffer& frameBuffer, const McVec2i& from, const McVec2i& to)
{
    const McBox2i& clip = frameBuffer.clipBox;
    const int margin = frameBuffer.lineWidth;
    const bool isOutside =
        std::max(from.x, to.x) + margin < clip.xmin || std::min(from.x, to.x) - margin > clip.xmax ||
        std::max(from.y, to.y) + margin < clip.ymin || std::min(from.y, to.y) - margin > clip.ymax;
    if (isOutside && !frameBuffer.swapAxes) return;
    frameBuffer.drawLine(from.x, from.y, to.x, to.y);
}

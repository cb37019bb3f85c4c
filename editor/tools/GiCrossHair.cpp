#include "tools/GiCrossHair.h"

#include "display/GiFrameBuffer.h"

namespace {

constexpr int kHorizontalLine = 0, kVerticalLine = 1;

} // namespace

void GiCrossHair::setPosition(const McVec2i& p)
{
    if (p == position) return;
    position = p;
    if (callback) callback(this, callbackData);
}

McVec2i GiCrossHair::getEffPosition(const GiFrameBuffer& frameBuffer) const
{
    return McVec2i(frameBuffer.columnStart(position.x), frameBuffer.rowStart(position.y));
}

void GiCrossHair::setValueChangedCallback(Callback function, void* data)
{
    callback = function;
    callbackData = data;
}

void GiCrossHair::setColor(int which, int r, int g, int b)
{
    unsigned char* color = colors[which != 0 ? kVerticalLine : kHorizontalLine];
    color[0] = static_cast<unsigned char>(r);
    color[1] = static_cast<unsigned char>(g);
    color[2] = static_cast<unsigned char>(b);
}

void GiCrossHair::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    const McVec2i at = getEffPosition(*frameBuffer);
    const unsigned char* color = colors[kVerticalLine];
    frameBuffer->setColor(color[0], color[1], color[2]);
    frameBuffer->writeColumn(at.x, 0, frameBuffer->zoomedSize.y - 1);
    color = colors[kHorizontalLine];
    frameBuffer->setColor(color[0], color[1], color[2]);
    frameBuffer->writeRow(0, frameBuffer->zoomedSize.x - 1, at.y);
}

#include "tools/GiCrossHairTool.h"

#include "core/Gi.h"
#include "core/GiOrientation.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "mc/McEvent.h"

#include <QCursor>

#include <cstdlib>

namespace {

constexpr int kReach = 3; // screen pixels on either side of a line that still take it
constexpr int kVertical = 1, kHorizontal = 2;

// Colours of the lines across the axes: a line keeps one axis fixed, and each axis keeps its colour in all
// viewers.
constexpr unsigned char kAxisColor[3][3] = {{0, 0, 255}, {0, 255, 0}, {255, 0, 0}};

int orientationOf(const GiFrameBuffer& frameBuffer)
{
    return frameBuffer.viewer ? giSliceAxis(frameBuffer.viewer->getOrientation()) : 0;
}

void setColor(GiFrameBuffer& frameBuffer, int axis)
{
    frameBuffer.setColor(kAxisColor[axis][0], kAxisColor[axis][1], kAxisColor[axis][2]);
}

/// Sets the flag while it lives, also when a viewer has no memory for its picture.
class Adjusting
{
public:
    explicit Adjusting(int& busyFlag) : flag(busyFlag) { flag = 1; }
    ~Adjusting() { flag = 0; }
    Adjusting(const Adjusting&) = delete;
    Adjusting& operator=(const Adjusting&) = delete;

private:
    int& flag;
};

} // namespace

void GiCrossHairTool::setValueChangedCallback(Callback function, void* data)
{
    callback = function;
    callbackData = data;
}

void GiCrossHairTool::valueChanged()
{
    if (callback) callback(this, callbackData);
}

McVec2i GiCrossHairTool::lines(const GiFrameBuffer& frameBuffer) const
{
    const int o = orientationOf(frameBuffer);
    return frameBuffer.pixelCentre(position[giWidthAxis(o)], position[giHeightAxis(o)]);
}

void GiCrossHairTool::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    if (!visible) return;
    const McVec2i at = lines(*frameBuffer);
    const int o = orientationOf(*frameBuffer);
    setColor(*frameBuffer, giWidthAxis(o));
    frameBuffer->writeColumn(at.x, 0, frameBuffer->zoomedSize.y - 1);
    setColor(*frameBuffer, giHeightAxis(o));
    frameBuffer->writeRow(0, frameBuffer->zoomedSize.x - 1, at.y);
}

int GiCrossHairTool::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    const McBox2i frame(0, 0, frameBuffer->zoomedSize.x - 1, frameBuffer->zoomedSize.y - 1);
    if (!visible || !frame.contains(event->x, event->y)) return 0;
    Gi* gi = frameBuffer->gi;

    if (dragAxes != 0 && McMouseButtonEvent::isButtonReleaseEvent(event, 0)) {
        frameBuffer->setBrowsing(false);
        if (gi) gi->touchData(1, 0, 0, 0, 0, 0);
    }
    if (dragAxes != 0 && event->left) {
        dragTo(*frameBuffer, event->x, event->y);
        if (callback) {
            frameBuffer->setBrowsing(true);
            valueChanged();
        } else if (gi) {
            gi->redraw();
        }
        return 1;
    }
    const int axes = grab(*frameBuffer, event->x, event->y);
    dragAxes = McMouseButtonEvent::isButtonPressEvent(event, 1) ? axes : 0;
    return axes != 0;
}

void GiCrossHairTool::dragTo(GiFrameBuffer& frameBuffer, int x, int y)
{
    const int o = orientationOf(frameBuffer);
    if (dragAxes & kVertical) position[giWidthAxis(o)] = frameBuffer.dataColumn(x);
    if (dragAxes & kHorizontal) position[giHeightAxis(o)] = frameBuffer.dataRow(y);
    if (frameBuffer.viewer) position[o] = frameBuffer.viewer->getSlice();
}

int GiCrossHairTool::grab(GiFrameBuffer& frameBuffer, int x, int y)
{
    const McVec2i at = lines(frameBuffer);
    const bool onVertical = std::abs(x - at.x) <= kReach, onHorizontal = std::abs(y - at.y) <= kReach;
    if (onVertical || onHorizontal)
        frameBuffer.setCursor(QCursor(!onVertical     ? Qt::SizeVerCursor
                                      : !onHorizontal ? Qt::SizeHorCursor
                                                      : Qt::SizeAllCursor));
    return (onVertical ? kVertical : 0) | (onHorizontal ? kHorizontal : 0);
}

// Cross hair and viewers adjust each other; `sliceSyncBusy` keeps the answer to an adjustment from
// becoming the next one.

void Gi::sliceNumberChanged(GiViewer* viewer)
{
    if (sliceSyncBusy) return;
    const Adjusting adjusting(sliceSyncBusy);
    McVec3i p = crossHair->getPosition();
    const int axis = viewer->getOrientation();
    if (axis >= 0 && axis <= 2 && p[axis] != viewer->getSlice()) {
        p[axis] = viewer->getSlice();
        crossHair->setPosition(p);
        for (int i = 0; i < viewers.size(); ++i)
            if (viewers[i] != viewer) viewers[i]->redraw();
    }
}

void Gi::crossHairCB(GiCrossHairTool* tool)
{
    if (viewers.size() == 1) return;
    const Adjusting adjusting(sliceSyncBusy);
    for (int i = 0; i < viewers.size(); ++i) {
        const int axis = viewers[i]->getOrientation();
        const int p = axis >= 0 && axis <= 2 ? tool->getPosition()[axis] : viewers[i]->getSlice();
        if (viewers[i]->getSlice() == p)
            viewers[i]->redraw();
        else
            viewers[i]->setSlice(p, true);
    }
}

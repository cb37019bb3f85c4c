// Frame buffer: who sees an event. It stands with the tools, since pan tool and cross hair have places of
// their own in the order.

#include "display/GiFrameBuffer.h"

#include "core/Gi.h"
#include "mc/McEvent.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiPanTool.h"

namespace {

GiPanTool* panToolOf(const Gi* gi)
{
    if (!gi || gi->tools.size() <= GiPanTool::kIndex) return nullptr;
    return dynamic_cast<GiPanTool*>(gi->tools[GiPanTool::kIndex]);
}

/// Whatever the middle button does, and the end of it: a release does not tell that the button was down.
bool isForPanTool(const McEvent& event, const GiPanTool& pan)
{
    return event.middle || (pan.isDragging() && McMouseButtonEvent::isButtonReleaseEvent(&event, 2));
}

bool isForCrossHair(const McEvent& event)
{
    return McMouseButtonEvent::isButtonPressEvent(&event, 1) || !(event.left || event.middle || event.right);
}

} // namespace

void GiFrameBuffer::clearToolMarks()
{
    if (gi && gi->currentTool) gi->currentTool->eventTakenElsewhere(this);
}

int GiFrameBuffer::offerToDraggingShapes(McEvent* event, GiCrossHairTool*& crossHair)
{
    for (int i = 0; i < shapes.size(); ++i) {
        if (!crossHair) crossHair = dynamic_cast<GiCrossHairTool*>(shapes[i]);
        if (shapes[i]->isDragging() && shapes[i]->handleEvent(this, event)) return 1;
    }
    return 0;
}

int GiFrameBuffer::handleEvent(McEvent* event)
{
    if (gi && !gi->imageLattice) return 0;
    for (int i = 0; i < handlers.size(); ++i)
        if (handlers[i](this, event, handlerData[i])) return 1;

    GiPanTool* pan = panToolOf(gi);
    if (pan && isForPanTool(*event, *pan) && pan->handleEvent(this, event)) {
        clearToolMarks();
        return 1;
    }
    GiCrossHairTool* crossHair = nullptr;
    if (offerToDraggingShapes(event, crossHair)) return 1;
    if (crossHair && isForCrossHair(*event) && crossHair->handleEvent(this, event)) {
        clearToolMarks();
        return 1;
    }
    if (gi) gi->updateCursor();
    for (int i = 0; i < shapes.size(); ++i) {
        GiShape* shape = shapes[i];
        // kept: only the active tool ends the walk; what other shapes take, their neighbours see too.
        if (shape->handleEvent(this, event) && gi && shape == gi->currentTool) return 1;
    }
    return 0;
}

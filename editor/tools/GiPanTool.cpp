#include "tools/GiPanTool.h"

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxViewerTool.h"
#include "mc/McEvent.h"

#include <QCursor>
#include <QPoint>

namespace {

/// The pointer on the desktop, mirrored as the buffer is. Scrolling moves the slice under the pointer, so
/// positions in the buffer would answer to the scrolling itself.
McVec2i hand(const GiFrameBuffer& frameBuffer)
{
    const QPoint p = QCursor::pos();
    return McVec2i(frameBuffer.flipX ? -p.x() : p.x(), frameBuffer.flipY ? -p.y() : p.y());
}

} // namespace

/// Stands for the pan tool in the viewer panel.
class GiPanTool::Wrapper : public HxViewerModalTool
{
public:
    explicit Wrapper(GiPanTool* owner) : HxViewerModalTool("Translate"), tool(owner) {}

    bool supportsViewer(HxViewerBase* viewer) override { return dynamic_cast<GiViewer*>(viewer) != nullptr; }
    void onActivate(HxViewerBase*) override
    {
        if (tool) tool->gi->setTool(kIndex);
    }

    GiPanTool* tool; // null once it is gone: a viewer may keep the wrapper longer
};

GiPanTool::GiPanTool(Gi* owner) : GiTool(owner), viewerTool(new Wrapper(this))
{
    name = "Pan";
}

GiPanTool::~GiPanTool()
{
    static_cast<Wrapper*>(viewerTool.get())->tool = nullptr;
}

QCursor GiPanTool::makeCursor() const
{
    return QCursor(Qt::OpenHandCursor);
}

bool GiPanTool::startsDrag(const McEvent& event) const
{
    return McMouseButtonEvent::isButtonPressEvent(&event, 2) ||
           (gi->currentTool == this && McMouseButtonEvent::isButtonPressEvent(&event, 1));
}

void GiPanTool::rememberGrip(const GiFrameBuffer& frameBuffer)
{
    const McVec2i p = hand(frameBuffer);
    grabX = p.x + frameBuffer.offset.x;
    grabY = p.y + frameBuffer.offset.y;
}

void GiPanTool::scroll(GiFrameBuffer& frameBuffer)
{
    const McVec2i p = hand(frameBuffer);
    frameBuffer.setOffset(McVec2i(grabX - p.x, grabY - p.y));
    // From the offset that the border allowed: a hand that comes back moves the slice at once.
    rememberGrip(frameBuffer);
}

int GiPanTool::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    const bool isMotion = event->as<McMotionEvent>() != nullptr;
    if (!dragBuffer) {
        if (isMotion || !startsDrag(*event)) return 0;
        dragBuffer = frameBuffer;
        rememberGrip(*frameBuffer);
    } else if (isMotion && frameBuffer == dragBuffer) {
        scroll(*frameBuffer);
    } else {
        dragBuffer = nullptr;
        return 0;
    }
    frameBuffer->setCursor(QCursor(Qt::ClosedHandCursor));
    return 1;
}

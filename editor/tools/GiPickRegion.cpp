// Pick region: what it does with events, its cursors and its panel.

#include "tools/GiPickRegion.h"

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"
#include "mc/McMemoryException.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>

namespace {

constexpr int kLeft = 1, kMiddle = 2;
constexpr int kHotX = 8, kHotY = 5; // of both cursors, in pixels of their files

bool isInFrame(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    return event.x >= 0 && event.y >= 0 && event.x < frameBuffer.zoomedSize.x &&
           event.y < frameBuffer.zoomedSize.y;
}

McVec2i pixelAt(const GiFrameBuffer& frameBuffer, const McEvent& event)
{
    return McVec2i(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y));
}

/// The key itself comes without the flag that it sets for later events.
void updateModifiers(McEvent& event)
{
    const auto* key = event.as<McKeyboardEvent>();
    if (!key) return;
    if (key->key == McKeyboardEvent::kControlLeft) event.ctrl = !key->released;
    if (key->key == McKeyboardEvent::kShift) event.shift = !key->released;
}

} // namespace

GiPickRegion::GiPickRegion(Gi* owner) : GiTool(owner)
{
    name = "Pick && Move";
}

void GiPickRegion::createWidget(QWidget* parent)
{
    parent->setObjectName("GiPickRegion");
    auto* grid = new QGridLayout(parent);
    allSlices = new QCheckBox("All slices");
    allSlices->setObjectName("wAllSlicesCheckBox");
    allSlices->setChecked(true);
    allSlices->setToolTip("Picks, moves and rotates in the whole volume");
    selectAll = new QCheckBox("Select all");
    selectAll->setObjectName("wSelectAllCheckBox");
    selectAll->setToolTip("Picks every voxel of the material, connected or not");
    auto* options = new QHBoxLayout;
    options->addWidget(allSlices);
    options->addWidget(selectAll);
    options->addStretch();
    grid->addWidget(new QLabel("Options:"), 0, 0);
    grid->addLayout(options, 0, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(1, 1);
}

// Cursors

const QCursor* GiPickRegion::getToolCursor() const
{
    if (!shownCursor || shownState != cursorState()) {
        shownState = cursorState();
        shownCursor = shownState == kMove ? HxResource::readCursor("SegHandCursor.png", nullptr, kHotX, kHotY)
                      : shownState == kRotate
                          ? HxResource::readCursor("SegRotateCursor.png", nullptr, kHotX, kHotY)
                          : QCursor(Qt::ArrowCursor);
    }
    return &*shownCursor;
}

void GiPickRegion::setCursor(unsigned int state)
{
    if (state == cursorState()) return;
    flags = (flags & ~kCursor) | state;
    gi->updateCursor();
}

void GiPickRegion::checkCursor(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    // The key comes to the viewer with the focus, while the pointer can be over another one.
    if (event.as<McKeyboardEvent>() && !frameBuffer.window().contains(event.x, event.y)) return;
    unsigned int state = kPick;
    // An event that tells of leaving has no position.
    if (isInFrame(frameBuffer, event) && !event.as<McLeaveWindowEvent>()) {
        const McVec2i pixel = pixelAt(frameBuffer, event);
        if (!event.ctrl && frameBuffer.selection->isSet(pixel.x, pixel.y))
            state = event.shift ? kRotate : kMove;
        const bool isPress = McMouseButtonEvent::isButtonPressEvent(&event, kLeft);
        if (isPress || (event.left && !event.as<McMotionEvent>()))
            pressVoxel = gi->getPoint3D(pixel.x, pixel.y, frameBuffer.viewer);
    }
    setCursor(state);
}

// Events

int GiPickRegion::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    if (!gi->labelLattice) dropDrag();
    if (!frameBuffer->selection || !frameBuffer->viewer || !gi->labelLattice) return 0;
    updateModifiers(*event);
    try {
        settleDrag(*frameBuffer, *event);
        if (isDragging() && isGivenUp(*event)) {
            cancelDrag();
            checkCursor(*frameBuffer, *event);
            return 1;
        }
        if (flags & kTranslating) return handleEventTranslate(frameBuffer, event);
        if (flags & kRotating) return handleEventRotate(frameBuffer, event);
        checkCursor(*frameBuffer, *event);
        const auto* button = event->as<McButtonEvent>();
        if (!button || !button->pressed || !isInFrame(*frameBuffer, *event)) return 0;
        if (cursorState() == kPick) {
            if (button->button != kLeft) return 0;
            pick(*frameBuffer, *event);
        } else {
            if (button->button != kLeft && button->button != kMiddle) return 0;
            startDrag(*frameBuffer, *event, button->button);
        }
    } catch (const McMemoryException& exception) {
        giveUp(exception);
    }
    return 1;
}

#include "tools/GiBlowTool.h"

#include "core/Gi.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "hx/HxResource.h"
#include "mc/McEvent.h"
#include "tools/McBlowRegion.h"

#include <QGridLayout>
#include <QIntValidator>
#include <QLabel>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

constexpr double kStepsPerPixel = 0.4;
constexpr int kLargestTolerance = 50; // in the panel, where it stands for the least speed limit
constexpr int kGrowOnly = 0;
constexpr int kEditWidth = 40;
constexpr int kMarkMargin = 2; // screen pixels that the marks of the curve reach beyond a pixel's start

/// Screen position of a point of the curve.
McVec2i screenPosition(const GiFrameBuffer& buffer, const McVec2f& p)
{
    return McVec2i(buffer.columnStart(static_cast<int>(p.x + 0.5f)),
                   buffer.rowStart(static_cast<int>(p.y + 0.5f)));
}

void drawMark(GiFrameBuffer& buffer, const McVec2i& at)
{
    for (int y = at.y; y < at.y + 2; ++y) buffer.writeRow(at.x, at.x + 1, y);
}

bool isInFrame(const GiFrameBuffer& buffer, const McEvent& event)
{
    return McBox2i(0, 0, buffer.zoomedSize.x - 1, buffer.zoomedSize.y - 1).contains(event.x, event.y);
}

GiSelectMode modeOf(const McEvent& event)
{
    return event.ctrl ? kSelectSubtract : event.shift ? kSelectAdd : kSelectReplace;
}

int numberIn(const QLineEdit& edit)
{
    return static_cast<int>(std::strtol(edit.text().toUtf8().constData(), nullptr, 10));
}

QLineEdit* addRow(QGridLayout* grid, const char* label, const char* name, int value, int least, int most)
{
    const int row = grid->rowCount();
    auto* edit = new QLineEdit(QString::number(value));
    edit->setObjectName(name);
    edit->setValidator(new QIntValidator(least, most, edit));
    edit->setFixedWidth(kEditWidth);
    grid->addWidget(new QLabel(label), row, 0);
    grid->addWidget(edit, row, 1);
    return edit;
}

} // namespace

GiBlowTool::GiBlowTool(Gi* owner) : GiTool(owner)
{
    name = "Blow Tool";
}

GiBlowTool::~GiBlowTool() = default;

QCursor GiBlowTool::makeCursor() const
{
    return HxResource::readCursor("SegBlowCursor.png", nullptr, 10, 8);
}

void GiBlowTool::createWidget(QWidget* parent)
{
    parent->setObjectName("GiBlowTool");
    auto* grid = new QGridLayout(parent);
    toleranceEdit = addRow(grid, "Tolerance:", "wToleranceEdit", tolerance, 0, kLargestTolerance);
    toleranceEdit->setToolTip("The higher, the weaker the edges that the curve crosses");
    gaussWidthEdit = addRow(grid, "Gauss width:", "wGaussWidthEdit", gaussWidth, 1, 8);
    gaussWidthEdit->setToolTip("How much the slice is smoothed before edges are looked for");
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(grid->rowCount(), 1);
}

void GiBlowTool::getParams()
{
    if (toleranceEdit) tolerance = numberIn(*toleranceEdit);
    if (gaussWidthEdit) gaussWidth = numberIn(*gaussWidthEdit);
    if (region) region->tolerance = kLargestTolerance - tolerance;
}

/// New data: the curve belongs to an image that is gone.
void GiBlowTool::init()
{
    if (dragging) abandon();
    region.reset();
    viewer = nullptr;
}

void GiBlowTool::deselect(GiFrameBuffer* frameBuffer)
{
    if (dragging && frameBuffer && frameBuffer->viewer == viewer) abandon();
}

bool GiBlowTool::isOnItsSlice() const
{
    for (const GiViewer* shown : gi->viewers)
        if (shown == viewer)
            return shown->getFrameBuffer() && shown->getOrientation() == orientation &&
                   shown->getSlice() == slice;
    return false;
}

/// Only a drag makes the curve grow; what is drawn in between is what the release selects.
const McBlowCurve* GiBlowTool::shownCurve() const
{
    if (!region || region->curves.isEmpty()) return nullptr;
    return region->curves[std::min(timeStep, region->curves.size() - 1)];
}

/// Ends the gesture and takes the curve off the screen.
void GiBlowTool::abandon()
{
    dragging = false;
    showCurve = false;
    undoStep.drop(*gi);
    gi->redraw();
}

int GiBlowTool::handleEvent(GiFrameBuffer* frameBuffer, McEvent* event)
{
    try {
        return follow(*frameBuffer, *event);
    } catch (...) {
        abandon();
        throw;
    }
}

int GiBlowTool::follow(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    const auto* button = event.as<McButtonEvent>();
    if (button && !frameBuffer.viewer) return 1;
    if (dragging && !isOnItsSlice()) abandon();
    if (button && button->pressed && isInFrame(frameBuffer, event)) {
        press(frameBuffer, event);
        return 1;
    }
    // Also a press beside the picture: with no gesture to end, the last curve is not selected once more.
    if (!dragging) return 0;
    if (button) {
        handleMouseUp();
        return 1;
    }
    if (frameBuffer.viewer != viewer) return 0;
    if (event.as<McLeaveWindowEvent>()) {
        handleMouseUp();
        return 1;
    }
    if (event.as<McMotionEvent>() && event.left) {
        drag(frameBuffer, event);
        return 1;
    }
    return 0;
}

void GiBlowTool::press(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    if (dragging) abandon(); // a further button: a new curve
    GiGreyImage* image = frameBuffer.viewer->getGreyImage();
    if (!image || !image->grey || image->width < 1 || image->height < 1) return;
    getParams();
    gi->saveUndoInformationForSlice(1, 0, frameBuffer.viewer); // selection, not labels
    undoStep.open(*gi);
    region.reset(); // before the new one takes its memory
    region = std::make_unique<McBlowRegion>(static_cast<int>(image->width), static_cast<int>(image->height),
                                            image->grey, kGrowOnly, gaussWidth);
    pressPixel = McVec2i(frameBuffer.dataColumn(event.x), frameBuffer.dataRow(event.y));
    region->init(pressPixel.x, pressPixel.y);
    region->tolerance = kLargestTolerance - tolerance;

    viewer = frameBuffer.viewer;
    orientation = viewer->getOrientation();
    slice = viewer->getSlice();
    selectionMode = modeOf(event);
    pressPos = McVec2i(event.x, event.y);
    pressZoom = frameBuffer.zoomedSize;
    dragDistance = 0;
    timeStep = 0;
    lastBox = McBox2i();
    dragging = showCurve = true;
    frameBuffer.paste();
}

void GiBlowTool::drag(GiFrameBuffer& frameBuffer, const McEvent& event)
{
    keepUpWithZoom(frameBuffer);
    const McVec2i way = McVec2i(event.x, event.y) - pressPos;
    dragDistance = static_cast<float>(std::hypot(way.x, way.y));
    timeStep = static_cast<int>(dragDistance * kStepsPerPixel);
    region->getTimeStep(timeStep);
    redraw(frameBuffer);
}

/// Keys zoom while the button is held.
void GiBlowTool::keepUpWithZoom(const GiFrameBuffer& frameBuffer)
{
    if (pressZoom == frameBuffer.zoomedSize) return;
    pressZoom = frameBuffer.zoomedSize;
    pressPos = frameBuffer.pixelCentre(pressPixel.x, pressPixel.y);
}

/// The parts where the curve was and where it is now.
void GiBlowTool::redraw(GiFrameBuffer& frameBuffer)
{
    const McBox2i fresh = getBoundingBox();
    McBox2i box = fresh;
    box.extendBy(lastBox);
    box = frameBuffer.screenBox(box);
    box.xmax += kMarkMargin;
    box.ymax += kMarkMargin;
    frameBuffer.render(box, nullptr);
    frameBuffer.paste(box);
    lastBox = fresh;
}

McBox2i GiBlowTool::getBoundingBox()
{
    if (!region) return McBox2i(0, 0, 1000, 1000);
    McBox2i box;
    const McBlowCurve* curve = shownCurve();
    for (int i = 0; curve && i < curve->size(); ++i) {
        const int x = static_cast<int>((*curve)[i].x), y = static_cast<int>((*curve)[i].y);
        box.extendBy(McBox2i(x - 1, y - 1, x + 1, y + 1));
    }
    return box;
}

/// kept: the masking window has no say here, unlike with the other tools. The curve already follows the gray
/// values, and is selected as it was shown, without holes.
void GiBlowTool::handleMouseUp()
{
    dragging = false;
    showCurve = false;
    // Undo in the middle of the gesture has taken its step away.
    if (!std::exchange(undoStep, {}).isNewest(*gi)) gi->saveUndoInformationForSlice(1, 0, viewer);
    GiSelection2D* selection = viewer->getSelection();
    const McBlowCurve* curve = shownCurve();
    if (selection && curve)
        selection->setSelection(curve->size(), curve->data(), static_cast<GiSelectMode>(selectionMode));
    gi->updateSelectionBoxes();
    gi->redraw();
    gi->touchData(1, 0, orientation, slice, 0, 0);
}

void GiBlowTool::render(GiFrameBuffer* frameBuffer, const McBox2i&)
{
    if (!region || !showCurve || frameBuffer->viewer != viewer || !isOnItsSlice()) return;
    keepUpWithZoom(*frameBuffer);
    const McBlowCurve* curve = shownCurve();
    const int n = curve ? curve->size() : 0;
    frameBuffer->setFunction(GiFrameBuffer::kDraw);
    for (int i = 0; i < n; ++i) {
        const McVec2i from = screenPosition(*frameBuffer, (*curve)[i]);
        const McVec2i to = screenPosition(*frameBuffer, (*curve)[i + 1 < n ? i + 1 : 0]);
        frameBuffer->setColor(255, 255, 0);
        frameBuffer->drawLine(from.x, from.y, to.x, to.y);
        frameBuffer->setColor(0, 128, 255);
        drawMark(*frameBuffer, from);
    }
    frameBuffer->setColor(0, 0, 255);
    drawMark(*frameBuffer, pressPos);
}

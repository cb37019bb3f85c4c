// Frame buffer widget: memory, coordinates and painting. Its events have a file of their own.

#include "app/GiQFrameBuffer.h"

#include "app/GiQ.h"
#include "display/GiViewer.h"
#include "hx/HxInterpreter.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McMemoryException.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int kWheelRestMs = 250; // without a step for so long, the wheel has come to rest
constexpr QColor kBackground(96, 96, 96);
constexpr int kTitlePlace = 10; // of its text, from the left and the upper edge

long indexBase()
{
    const char* text = HxInterpreter::getTheInterpreter()->getVar("VOREL_INDEX_BASE");
    return text ? std::strtol(text, nullptr, 10) : 0;
}

} // namespace

McDArray<GiQFrameBuffer*> GiQFrameBuffer::allFrameBuffers;
long GiQFrameBuffer::sSliceNumBase = 0;

GiQFrameBuffer::GiQFrameBuffer(const char* name, QWidget* parent, int width, int height, int offsetX,
                               int offsetY)
    : QWidget(parent), widgetSize(std::max(width, 1), std::max(height, 1)), ready(width >= 1 && height >= 1)
{
    setObjectName(name);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_MouseTracking);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    QWidget::resize(widgetSize.x, widgetSize.y);
    setMemSize(widgetSize);
    offset = McVec2i(offsetX, offsetY);
    clear();
    defaultValues();
    sSliceNumBase = indexBase();
    wheelTimer.setInterval(kWheelRestMs);
    wheelTimer.setSingleShot(true);
    connect(&wheelTimer, &QTimer::timeout, this, &GiQFrameBuffer::wheelBrowsingStopped);
    allFrameBuffers.append(this);
}

GiQFrameBuffer::~GiQFrameBuffer()
{
    for (int i = allFrameBuffers.size() - 1; i >= 0; --i)
        if (allFrameBuffers[i] == this) allFrameBuffers.remove(i);
    if (viewer) viewer->setFrameBuffer(nullptr);
    destroyBuffer();
}

void GiQFrameBuffer::createBuffer(const McVec2i& size)
{
    if (image && image->width() == size.x && image->height() == size.y) return;
    auto fresh = std::make_unique<QImage>(size.x, size.y, QImage::Format_RGB32);
    if (fresh->isNull())
        throw McMemoryException(4ul * static_cast<unsigned long>(size.x) *
                                static_cast<unsigned long>(size.y));
    image = std::move(fresh);
    memory = image->bits();
    memSize = size;
    setPixelType(kXRGB); // that of the image
    bytesPerRow = static_cast<unsigned long>(image->bytesPerLine());
}

void GiQFrameBuffer::destroyBuffer()
{
    memory = nullptr; // the image's, not the base's to free
    image.reset();
}

void GiQFrameBuffer::setMemSize(const McVec2i& size)
{
    // Without a slice there is nothing to be larger than.
    createBuffer(McVec2i(std::max(1, zoomedSize.x > 0 ? std::min(size.x, zoomedSize.x) : size.x),
                         std::max(1, zoomedSize.y > 0 ? std::min(size.y, zoomedSize.y) : size.y)));
    offset = withinSlice(offset);
    prepareCoordLookups2();
}

/// An offset limited so that the window stays within the slice.
McVec2i GiQFrameBuffer::withinSlice(const McVec2i& p) const
{
    return McVec2i(std::clamp(p.x, 0, std::max(0, zoomedSize.x - memSize.x)),
                   std::clamp(p.y, 0, std::max(0, zoomedSize.y - memSize.y)));
}

void GiQFrameBuffer::resize(const McVec2i& size, const int* columns, const int* rows)
{
    ready = size.x != 0 && size.y != 0;
    if (!ready) return;
    GiFrameBuffer::resize(size, columns, rows);
    fitMemory();
}

/// The picture fills the widget as far as the slice does, and keeps what is in its middle.
void GiQFrameBuffer::fitMemory()
{
    const McVec2i middle(offset.x + memSize.x / 2, offset.y + memSize.y / 2);
    const McVec2i former = memSize;
    setMemSize(widgetSize);
    if (memSize == former) return;
    offset = withinSlice(McVec2i(middle.x - memSize.x / 2, middle.y - memSize.y / 2));
    prepareCoordLookups2();
}

void GiQFrameBuffer::setOffset(const McVec2i& p)
{
    const McVec2i former = offset;
    offset = withinSlice(p);
    if (offset == former) return;
    prepareCoordLookups2();
    const McVec2i moved(offset.x - former.x, offset.y - former.y);
    if (std::abs(moved.x) < memSize.x && std::abs(moved.y) < memSize.y)
        renderUncovered(moved);
    else
        render(nullptr);
    paste();
    if (scrollBarH) scrollBarH->setOffset(McVec2i(offset.x, 0));
    if (scrollBarV) scrollBarV->setOffset(McVec2i(0, offset.y));
}

/// Draws what came into view when the window moved; the rest of the picture moves the other way.
void GiQFrameBuffer::renderUncovered(const McVec2i& moved)
{
    if (moved.x) scrollHorizontal(flipX ? moved.x : -moved.x);
    if (moved.y) scrollVertical(flipY ? moved.y : -moved.y);
    const McBox2i all = GiFrameBuffer::window();
    McBox2i columns = all, rows = all;
    if (moved.x > 0) columns.xmin = all.xmax - moved.x + 1;
    if (moved.x < 0) columns.xmax = all.xmin - moved.x - 1;
    if (moved.y > 0) rows.ymin = all.ymax - moved.y + 1;
    if (moved.y < 0) rows.ymax = all.ymin - moved.y - 1;
    if (moved.x) render(columns, nullptr);
    if (moved.y) render(rows, nullptr);
}

void GiQFrameBuffer::setCursor(const QCursor& shape)
{
    if (overScrollBar)
        savedCursor = shape;
    else if (shape != cursor()) // every event asks for it, few change it
        QWidget::setCursor(shape);
}

McVec2i GiQFrameBuffer::getDrawingAreaOffset() const
{
    return McVec2i(offset.x - std::max(0, widgetSize.x - memSize.x) / 2,
                   offset.y - std::max(0, widgetSize.y - memSize.y) / 2);
}

McVec2i GiQFrameBuffer::translatePosFromScreen(const McVec2i& p) const
{
    const McVec2i add = getDrawingAreaOffset();
    McVec2i q((flipX ? widgetSize.x - 1 - p.x : p.x) + add.x, (flipY ? widgetSize.y - 1 - p.y : p.y) + add.y);
    if (swapAxes) std::swap(q.x, q.y);
    return q;
}

McVec2i GiQFrameBuffer::translatePosToScreen(const McVec2i& p) const
{
    McVec2i q = p;
    if (swapAxes) std::swap(q.x, q.y);
    const McVec2i add = getDrawingAreaOffset();
    q = McVec2i(q.x - add.x, q.y - add.y);
    return McVec2i(flipX ? widgetSize.x - 1 - q.x : q.x, flipY ? widgetSize.y - 1 - q.y : q.y);
}

/// Screen position of the picture's upper left corner. An odd pixel is left over on the right or below, as
/// seen without flip: that is where the flipped screen coordinates have it on the other side.
McVec2i GiQFrameBuffer::margin() const
{
    const McVec2i spare(std::max(0, widgetSize.x - memSize.x), std::max(0, widgetSize.y - memSize.y));
    return McVec2i(flipX ? spare.x - spare.x / 2 : spare.x / 2, flipY ? spare.y - spare.y / 2 : spare.y / 2);
}

QRect GiQFrameBuffer::screenRect(const McBox2i& box) const
{
    const McVec2i a = translatePosToScreen(McVec2i(box.xmin, box.ymin));
    const McVec2i b = translatePosToScreen(McVec2i(box.xmax, box.ymax));
    return QRect(QPoint(std::min(a.x, b.x), std::min(a.y, b.y)),
                 QPoint(std::max(a.x, b.x), std::max(a.y, b.y)));
}

int GiQFrameBuffer::numSlices() const
{
    return gi && gi->labelLattice && viewer ? gi->getNumSlices(viewer->getOrientation()) : 0;
}

int GiQFrameBuffer::slice() const
{
    return viewer ? viewer->getSlice() : 0;
}

void GiQFrameBuffer::paste()
{
    repaint();
}

void GiQFrameBuffer::paste(const McBox2i& box)
{
    if (!box.isEmpty()) repaint(screenRect(box));
}

void GiQFrameBuffer::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect part = event->rect();
    const int slices = numSlices();
    if (!ready || !image || (viewer && slices == 0)) {
        painter.fillRect(part, kBackground);
        return;
    }
    paintPicture(painter, part);
    if (!viewer) return;
    paintTitle(painter);
    if (slices > 1) paintScrollBar(painter);
}

void GiQFrameBuffer::paintPicture(QPainter& painter, const QRect& part) const
{
    const McVec2i corner = margin();
    const QRect picture(corner.x, corner.y, memSize.x, memSize.y);
    const QRect shown = part & picture;
    // The memory is mirrored as the screen is, so no part of it is mirrored again here.
    if (!shown.isEmpty()) painter.drawImage(shown, *image, shown.translated(-corner.x, -corner.y));
    const int right = picture.right() + 1, below = picture.bottom() + 1;
    const QRect strips[] = {
        QRect(0, 0, widgetSize.x, corner.y), QRect(0, below, widgetSize.x, widgetSize.y - below),
        QRect(0, corner.y, corner.x, memSize.y), QRect(right, corner.y, widgetSize.x - right, memSize.y)};
    for (const QRect& strip : strips) painter.fillRect(strip & part, kBackground);
}

const char* GiQFrameBuffer::orientationName() const
{
    static constexpr const char* kPlanes[] = {"YZ Plane", "XZ Plane", "XY Plane"};
    static constexpr const char* kAxes[] = {"YZ", "XZ", "XY"};
    static constexpr const char* kAnatomical[] = {"sagittal", "coronal", "axial"};
    const int orientation = std::clamp(viewer->getOrientation(), 0, 2);
    const auto* controller = dynamic_cast<const GiQ*>(gi);
    if (controller && controller->getWidget()) return kPlanes[orientation];
    const bool anatomical = HxSettingsMgr::getInstance()->getPreferences().anatomicalNames;
    return anatomical ? kAnatomical[orientation] : kAxes[orientation];
}

void GiQFrameBuffer::paintTitle(QPainter& painter) const
{
    const QString title =
        QString::asprintf("# %ld/%d [%s]", slice() + sSliceNumBase, numSlices(), orientationName());
    const int base = painter.fontMetrics().ascent() + kTitlePlace;
    painter.setPen(Qt::black);
    painter.drawText(kTitlePlace + 1, base + 1, title);
    painter.setPen(Qt::white);
    painter.drawText(kTitlePlace, base, title);
}

void GiQFrameBuffer::paintScrollBar(QPainter& painter) const
{
    const int length = barLength(), tick = length * slice() / (numSlices() - 1);
    const int w = widgetSize.x, y = widgetSize.y - 8;
    const QLine lines[] = {QLine(15, y, 15 + length, y),   QLine(15 + tick, y - 4, 15 + tick, y + 4),
                           QLine(4, y, 11, y - 4),         QLine(4, y, 11, y + 4),
                           QLine(w - 5, y, w - 12, y - 4), QLine(w - 5, y, w - 12, y + 4)};
    painter.setPen(Qt::black);
    for (const QLine& line : lines) painter.drawLine(line.translated(1, 1));
    painter.setPen(Qt::white);
    painter.drawLines(lines, std::size(lines));
}

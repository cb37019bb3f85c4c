#include "app/GiQViewer.h"

#include "app/GiQFrameBuffer.h"

#include <algorithm>

namespace {

constexpr int kDefaultSide = 512;

} // namespace

GiQViewer::GiQViewer(const char* name, Gi* owner, QWidget* parent)
    : GiViewer(name, owner), widget(new GiQFrameBuffer(name, parent, kDefaultSide, kDefaultSide, 0, 0))
{
    setFrameBuffer(widget);
    createShapes();
}

GiQViewer::~GiQViewer()
{
    delete widget.data();
}

QWidget* GiQViewer::getWidget()
{
    return widget;
}

void GiQViewer::setOrientation(int newOrientation)
{
    static constexpr const char* kPlaces[] = {"A1_UpperRight", "A2_LowerLeft", "A0_UpperLeft"};
    GiViewer::setOrientation(newOrientation);
    if (widget) widget->setObjectName(kPlaces[std::clamp(newOrientation, 0, 2)]);
}

void GiQViewer::copySettings(const GiViewer& other)
{
    float min, max;
    other.getDataWindow(min, max);
    setDataWindow(min, max, false);
    setZoomFactor(other.getZoomFactor()); // the coordinate tables follow from it
}

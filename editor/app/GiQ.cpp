#include "app/GiQ.h"

#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "display/GiFrameBuffer.h"
#include "display/GiGreyImage.h"
#include "display/GiLabelImage.h"
#include "display/GiMemoryViewer.h"
#include "hx/HxField3.h"
#include "hx/HxHistogramInterface.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxObjectPool.h"
#include "hx/HxParamBundle.h"
#include "hx/HxRegScalarField3.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McHistogram.h"
#include "mc/McInterface.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiTool.h"

#include <QCursor>
#include <QGuiApplication>

#include <algorithm>
#include <tuple>

namespace {

constexpr int kHostFloat = 3, kHostDouble = 4; // element types whose windows keep fractions
constexpr int kSliderBins = 120;

int editorType(int hostType)
{
    switch (hostType) {
    case 1:
        return 1;
    case 7:
        return 2;
    case 2:
        return 3;
    case 8:
        return 4;
    case kHostFloat:
        return 5;
    case kHostDouble:
        return 6;
    default:
        return 0;
    }
}

bool hasDims(const HxLattice3& lattice, const unsigned long* dims)
{
    return std::equal(dims, dims + 3, lattice.dims());
}

} // namespace

GiQ::GiQ(HxGiEditor* owner) : editor(owner)
{
    createViewers();
    readSelectionDrawStyle();
    connect(HxObjectPool::getThePool(), &HxObjectPool::objectRemoved, this, &GiQ::slotObjectRemoved);
    connect(HxSettingsMgr::getInstance(), &HxSettingsMgr::preferencesChanged, this, &GiQ::preferencesChanged);
}

GiQ::~GiQ()
{
    disconnectData();
    destroyMembers();
}

void GiQ::createViewers()
{
    viewerPanel = &panel;
    for (int orientation = 0; orientation < 3; ++orientation) {
        auto* viewer = new GiMemoryViewer("viewer", this);
        viewer->ref();
        viewer->setPanel(&panel);
        viewer->setOrientation(orientation);
        viewer->setFlip(0, 0, 0);
        GiFrameBuffer* buffer = viewer->getFrameBuffer();
        if (panTool) buffer->addShape(panTool);
        buffer->addShape(crossHair);
        if (currentTool) buffer->addShape(currentTool);
        viewers.append(viewer);
    }
    panel.setActiveViewer(viewers[2]);
    for (int i = viewers.size() - 1; i >= 0; --i) panel.registerViewer(viewers[i]);
    lastViewer = viewers[2];
}

void GiQ::setDataWindow(float min, float max, bool redrawAfter)
{
    dataWindow[0] = min;
    dataWindow[1] = max;
    if (zoomAllViewers)
        for (int i = 0; i < viewers.size(); ++i) viewers[i]->setDataWindow(min, max, redrawAfter);
    else if (GiViewer* viewer = getCurrentViewer())
        viewer->setDataWindow(min, max, redrawAfter);
}

void GiQ::setToolDataWindow(float min, float max, bool redrawAfter)
{
    const int type = imageLattice ? imageLattice->primType() : kHostFloat;
    const bool real = type == kHostFloat || type == kHostDouble;
    toolDataWindow[0] = real ? min : static_cast<float>(static_cast<long>(min));
    toolDataWindow[1] = real ? max : static_cast<float>(static_cast<long>(max));
    for (int i = 0; i < viewers.size(); ++i)
        viewers[i]->setMaskingWindow(toolDataWindow[0], toolDataWindow[1], redrawAfter);
}

void GiQ::setMaskingEnabled(bool on)
{
    masking = on;
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setMaskingEnabled(on);
    setToolDataWindowSliderTracking(true);
}

void GiQ::updateCursor()
{
    // Without a display there is no pointer, and cursors made of pictures cannot be had.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
    const QCursor arrow(Qt::ArrowCursor);
    for (int i = 0; i < viewers.size(); ++i)
        viewers[i]->setCursor(currentTool ? *currentTool->getToolCursor() : arrow);
}

void GiQ::touchData(int selectionTouched, int labelsTouched, int, int, int, int)
{
    if (selectionTouched) emit selectionChanged();
    if (labelsTouched) {
        // Only marked as stale: the next question for the range pays for the scan, not the edit.
        if (auto* field = dynamic_cast<HxField3*>(labelData)) field->touchMinMax(0, -1, 0);
        emit labelsChanged(labelData);
    }
}

int GiQ::getPickedVoxel(HxViewer*, int, int, McVec3i&, float&)
{
    return 0; // nothing can be picked without a 3D view
}

void GiQ::initRangeSliders(HxData* image, float& min, float& max)
{
    float rangeMin = 0, rangeMax = 255;
    if (auto* source = mcinterface_cast<HxHistogramInterface>(image)) {
        const McHistogram histogram = source->getHistogram(kSliderBins);
        rangeMin = histogram.getMin();
        rangeMax = histogram.getMax();
    }
    clearToolDataWindowMarker();
    setToolDataWindow(0.75f * rangeMin + 0.25f * rangeMax, rangeMax, true);

    float window[2] = {rangeMin, rangeMax};
    if (auto* labels = mcinterface_cast<HxLabelLattice3>(image)) {
        window[0] = 0;
        window[1] = static_cast<float>(labels->materials()->nBundles() - 1);
    } else if (image) {
        image->parameters.findReal("DataWindow", 2, window);
    }
    min = std::max(rangeMin, window[0]);
    max = std::min(rangeMax, window[1]);
}

void GiQ::setVolumeOfType(int hostType, const unsigned long* dims, void* data, HxLabelLattice3* lattice)
{
    const int n = static_cast<int>(dims[0]);
    switch (hostType) {
    case 1:
        return setVolumeShort(dims, 2 * n, static_cast<short*>(data), lattice);
    case 7:
        return setVolumeUnsignedShort(dims, 2 * n, static_cast<unsigned short*>(data), lattice);
    case 2:
        return setVolumeInt(dims, 4 * n, static_cast<int*>(data), lattice);
    case 8:
        return setVolumeUnsignedInt(dims, 4 * n, static_cast<unsigned int*>(data), lattice);
    case kHostFloat:
        return setVolumeFloat(dims, 4 * n, static_cast<float*>(data), lattice);
    case kHostDouble:
        return setVolumeDouble(dims, 8 * n, static_cast<double*>(data), lattice);
    default:
        return setVolumeByte(dims, n, static_cast<unsigned char*>(data), lattice);
    }
}

void GiQ::setImageDataSet(HxData* image)
{
    if (imageData && imageData != labelData)
        disconnect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
    auto* lattice = mcinterface_cast<HxLattice3>(image);
    primType = editorType(lattice->primType());
    imageSlices.init(lattice->dims(), McTypedPointer(editor->holdImage(lattice), lattice->primType()));
    imageData = image;
    imageLattice = lattice;
    float min, max;
    initRangeSliders(image, min, max);
    setDataWindow(min, max, true);
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setSlice(viewers[i]->getSlice(), true);
    redraw();
    if (imageData != labelData) connect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
}

void GiQ::connectData()
{
    connect(labelData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
    if (imageData != labelData) connect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
}

void GiQ::disconnectData()
{
    if (labelData) disconnect(labelData, nullptr, this, nullptr);
    if (imageData) disconnect(imageData, nullptr, this, nullptr);
}

void GiQ::clear()
{
    disconnectData();
    materials = nullptr;
    labelData = nullptr;
    imageData = nullptr;
    labelLattice = nullptr;
    imageLattice = nullptr;
    currentTissue = 0;
    selection->resize(0, 0, 0);
    // The windows into the bits must shrink with them before anybody is told: listeners scan them.
    for (int i = 0; i < viewers.size(); ++i)
        selection->getSlice(viewers[i]->getSelection(), viewers[i]->getOrientation(), 0);
    touchData(1, 0, 0, 0, 0, 0);
    for (int i = viewers.size() - 1; i >= 0; --i) {
        if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer()) buffer->clear();
        if (GiLabelImage* labels = viewers[i]->getLabelImage()) labels->setMemory(nullptr, 0, 0);
        if (GiGreyImage* image = viewers[i]->getGreyImage()) image->clear();
    }
    setDataWindow(0, 255, true);
    setToolDataWindow(0, 255, true);
    clearUndo(1);
    // The views end with the data: nothing may reach memory that its owner is free to give back.
    const unsigned long none[3] = {0, 0, 0};
    imageSlices.init(none, McTypedPointer(nullptr, 0));
    labelSlices.init(none, 1, nullptr);
}

void GiQ::materialsChanged()
{
    if (materials) GiLabelImage::setColor(this, *materials);
    redraw();
}

void GiQ::slotDataTouched(unsigned int)
{
    if (!imageData || !labelLattice) return;
    if (!HxSubApplication::running()) {
        editor->stopEditing();
        return;
    }
    const auto* image = mcinterface_cast<HxLattice3>(imageData);
    if (image && hasDims(*image, labelLattice->dims()) && hasDims(*labelLattice, selection->dims))
        return; // a change of values needs no new binding
    HxData* labels = labelData;
    disconnectData();
    labelData = nullptr; // the pair must not pass for the one that is bound already
    editor->startEditing(labels);
}

void GiQ::preferencesChanged(const HxPreferences& old, const HxPreferences& now)
{
    const auto look = [](const HxPreferences& p) {
        return std::tie(p.selectionDrawStyle, p.selectionAlpha, p.selectionStyle3D);
    };
    // A weight that a script chose stays until the user wants another look.
    if (look(old) != look(now)) readSelectionDrawStyle();
}

void GiQ::slotObjectRemoved(HxObject* object)
{
    if (object == labelData)
        editor->stopEditing();
    else if (object == imageData && labelData)
        setImageDataSet(labelData);
}

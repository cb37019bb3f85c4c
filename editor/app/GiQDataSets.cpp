// Which image and which labels are edited: binding them, following what happens to them outside, and the
// combo boxes with which the user switches between those of the pool.

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/HxGiEditor.h"
#include "core/GiBusy.h"
#include "display/GiViewer.h"
#include "hx/HxLabelField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxOrientation.h"
#include "hx/HxResource.h"
#include "hx/HxSubApplication.h"
#include "mc/McException.h"
#include "mc/McInterface.h"
#include "tools/giGuarded.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVariant>

#include <algorithm>
#include <memory>

namespace {

constexpr int kSubApplicationMode = 2;

/// By the host's element code; every other code counts as bytes.
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
    case 3:
        return 5;
    case 4:
        return 6;
    default:
        return 0;
    }
}

bool sameDims(const HxLattice3& a, const HxLattice3& b)
{
    return std::equal(a.dims(), a.dims() + 3, b.dims());
}

bool sameDims(HxRegScalarField3* a, HxRegScalarField3* b)
{
    return sameDims(*a->lattice(), *b->lattice());
}

bool isLabelField(HxRegScalarField3* field)
{
    return mcinterface_cast<HxLabelLattice3>(field) != nullptr;
}

/// The object that a label field has connected as its image.
HxObject* connectedImage(HxRegScalarField3* labels)
{
    auto* field = dynamic_cast<HxLabelField3*>(labels);
    return field ? field->imageConnection().source() : nullptr;
}

bool isUniformOrStacked(HxRegScalarField3* field)
{
    const int kind = field->coords()->kind();
    return kind == HxLatticeCoords::kUniform || kind == HxLatticeCoords::kStacked;
}

/// What can be shown, apart from labels.
bool isImage(HxRegScalarField3* field)
{
    return isUniformOrStacked(field) && HxGiEditor::isImageType(field->lattice()->primType()) &&
           field->lattice()->numDataVars() == 1;
}

int indexOfNone(const QComboBox* box)
{
    return box->count() - 1;
}

void choose(QComboBox* box, int index)
{
    const QSignalBlocker quiet(box);
    box->setCurrentIndex(index);
}

} // namespace

// Binding

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
    case 3:
        return setVolumeFloat(dims, 4 * n, static_cast<float*>(data), lattice);
    case 4:
        return setVolumeDouble(dims, 8 * n, static_cast<double*>(data), lattice);
    default:
        return setVolumeByte(dims, n, static_cast<unsigned char*>(data), lattice);
    }
}

void GiQ::setImageDataSet(HxData* image)
{
    auto* lattice = mcinterface_cast<HxLattice3>(image);
    if (!lattice || !labelLattice || !sameDims(*lattice, *labelLattice)) return;
    if (imageData && imageData != labelData)
        disconnect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
    primType = editorType(lattice->primType());
    imageSlices.init(lattice->dims(), McTypedPointer(editor->holdImage(lattice), lattice->primType()));
    imageData = image;
    imageLattice = lattice;
    // Only now, when the new image stands: losing the one in use would bring the labels in its place.
    if (gradientField != image) removeGradientField();
    float min, max;
    initRangeSliders(image, min, max);
    setDataWindow(min, max, true);
    for (int i = 0; i < viewers.size(); ++i) viewers[i]->setSlice(viewers[i]->getSlice(), true);
    redrawViewAll();
    connect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched, Qt::UniqueConnection);
}

void GiQ::connectData()
{
    for (HxData* data : {labelData, imageData})
        connect(data, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched, Qt::UniqueConnection);
}

void GiQ::disconnectData()
{
    if (labelData) disconnect(labelData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
    if (imageData) disconnect(imageData, &HxData::dataObjectTouched, this, &GiQ::slotDataTouched);
}

McDArray<HxData*> GiQ::imagesOfThisSize() const
{
    McDArray<HxData*> images;
    if (labelLattice) findImageDataSets(labelLattice->dims(), images);
    return images;
}

// Changes from outside

void GiQ::slotDataTouched(unsigned int mask)
{
    if (!imageData || !labelLattice) return;
    const auto* image = mcinterface_cast<HxLattice3>(imageData);
    const bool fits = image && sameDims(*image, *labelLattice) &&
                      std::equal(selection->dims, selection->dims + 3, labelLattice->dims());
    const bool parametersChanged = mask & HxObject::kParametersChanged; // materials are parameters
    if (mode != kSubApplicationMode) {
        if (!fits)
            editor->stopEditing();
        else if (parametersChanged)
            materialsChanged();
        return;
    }
    QComboBox* box = toolbox->wLabelData;
    if (!HxSubApplication::running()) {
        if (comboObject(box, box->currentIndex()) == labelData) editor->stopEditing();
        return;
    }
    if (fits) { // a change of values needs no new binding
        if (parametersChanged) materialsChanged();
        return;
    }
    disconnectData();
    labelData = nullptr; // the pair must not pass for the one that is bound already
    setLabelDataSA(box->currentIndex());
}

// Combo boxes

void GiQ::connectDataSetSwitch()
{
    connect(toolbox->wImageData, &QComboBox::currentIndexChanged, this,
            giGuardedSlot(this, &GiQ::setImageDataSA));
    connect(toolbox->wLabelData, &QComboBox::currentIndexChanged, this,
            giGuardedSlot(this, &GiQ::setLabelDataSA));
    connect(toolbox->wNewLabels, &QToolButton::clicked, this, &GiQ::newLabelDataSA);
    HxObjectPool* notifier = HxObjectPool::getThePool()->notifier();
    connect(notifier, &HxObjectPool::objectAdded, this, giGuardedSlot(this, &GiQ::slotObjectAddedSA));
    connect(notifier, &HxObjectPool::objectRenamed, this, &GiQ::slotObjectRenamedSA);
}

HxRegScalarField3* GiQ::comboField(const QComboBox* box, int index) const
{
    return dynamic_cast<HxRegScalarField3*>(comboObject(box, index));
}

HxObject* GiQ::comboObject(const QComboBox* box, int index) const
{
    return static_cast<HxObject*>(box->itemData(index).value<void*>());
}

void GiQ::setImageDataSA(int index)
{
    HxRegScalarField3* image = comboField(toolbox->wImageData, index);
    if (!image) image = dynamic_cast<HxRegScalarField3*>(labelData); // the labels are their own grey image
    if (!image || !isUniformOrStacked(image)) return;
    if (labelLattice && sameDims(*image->lattice(), *labelLattice)) {
        setImageDataSet(image);
        return;
    }
    const int choice = matchingLabels(image);
    choose(toolbox->wLabelData, choice);
    editor->stopEditing();
    clearSelection(true, false);
    if (HxRegScalarField3* labels = comboField(toolbox->wLabelData, choice))
        editor->startEditing(labels, image);
    else
        redraw();
}

/// The item of the label field that goes with an image: the one connected to it, else the first of its size,
/// else "<None>".
int GiQ::matchingLabels(HxRegScalarField3* image) const
{
    const QComboBox* box = toolbox->wLabelData;
    int choice = indexOfNone(box);
    for (int i = 0; i < indexOfNone(box); ++i) {
        HxRegScalarField3* labels = comboField(box, i);
        if (!labels || !sameDims(labels, image)) continue;
        if (connectedImage(labels) == image) return i;
        if (choice == indexOfNone(box)) choice = i;
    }
    return choice;
}

void GiQ::setLabelDataSA(int index)
{
    HxRegScalarField3* labels = comboField(toolbox->wLabelData, index);
    if (labels && labels == labelData) return;
    editor->stopEditing();
    if (!labels) {
        initTools();
        redraw();
        return;
    }
    const int choice = matchingImage(labels);
    choose(toolbox->wImageData, choice);
    clearSelection(true, false);
    editor->startEditing(labels, comboField(toolbox->wImageData, choice));
}

/// The item of the image that goes with labels, by the same rule.
int GiQ::matchingImage(HxRegScalarField3* labels) const
{
    const QComboBox* box = toolbox->wImageData;
    int choice = indexOfNone(box);
    for (int i = 0; i < indexOfNone(box); ++i) {
        HxRegScalarField3* image = comboField(box, i);
        if (!image || !sameDims(labels, image)) continue;
        if (connectedImage(labels) == image) return i;
        if (choice == indexOfNone(box)) choice = i;
    }
    return choice;
}

// "New"

void GiQ::newLabelDataSA()
{
    HxRegScalarField3* image = comboField(toolbox->wImageData, toolbox->wImageData->currentIndex());
    if (!image) {
        HxMessage::getTheMsg()->Info("No image data set selected.");
        return;
    }
    newLabelDataRunning = true; // the new object is taken here and not by slotObjectAddedSA
    try {
        const GiBusy busy;
        HxLabelField3* labels = makeLabelField(image);
        HxObjectPool::getThePool()->addObject(labels);
        QComboBox* box = toolbox->wLabelData;
        insertItem(box, labels);
        choose(box, indexOfNone(box) - 1);
        scanSuspended = true;
        editor->stopEditing();
        editor->startEditing(labels);
        setMenuEnabled(labelData != nullptr); // null if the editor refused them
        scanSuspended = false;
        emit hiddenSelectionDetected(0);
    } catch (const McException& e) {
        scanSuspended = false;
        HxResource::handleException(e, 0);
    }
    newLabelDataRunning = false;
}

/// Empty labels over the image, connected to it, with a first material to draw.
HxLabelField3* GiQ::makeLabelField(HxRegScalarField3* image) const
{
    auto* lattice = new HxLabelLattice3(image->coords()->clone());
    HxLabelField3* labels = lattice->create();
    labels->setLabel(HxBase::composeLabel(image->getLabel(), "Labels"));
    lattice->clear();
    labels->touchMinMax(0, 0, 1);
    labels->imageConnection().connect(image);
    // Saved labels must lie where the image lies, for other programs too.
    HxOrientation::copy(image->parameters, labels->parameters);
    auto* inside = new HxParamBundle("Inside");
    inside->set("Color", "0.64 0 0.8");
    labels->materials()->insert(inside);
    return labels;
}

// The pool

/// Before "<None>", or at the end of an empty box.
void GiQ::insertItem(QComboBox* box, HxObject* object) const
{
    const QSignalBlocker quiet(box);
    const int place = std::max(0, indexOfNone(box));
    box->insertItem(place, QString::fromUtf8(object->getLabel()), QVariant::fromValue<void*>(object));
}

void GiQ::slotObjectAddedSA(HxObject* object)
{
    auto* field = dynamic_cast<HxRegScalarField3*>(object);
    // Hidden behind another tool panel it listens to nothing: the boxes are filled when it shows again.
    // The main window itself may be hidden, as in runs without a display.
    if (!field || newLabelDataRunning || !toolbox->isVisibleTo(toolbox->window())) return;
    QComboBox* box = isLabelField(field) ? toolbox->wLabelData : toolbox->wImageData;
    if (isLabelField(field)) {
        if (comboObject(box, indexOfNone(box) - 1) != object) insertItem(box, object);
        if (box->count() != 1) return; // the user chooses, unless the box offers nothing else
        editor->stopEditing();
        editor->startEditing(field);
    } else if (isImage(field)) {
        insertItem(box, object);
        if (gradientField == field) return; // made for the tools; the user still works on the image
        choose(box, indexOfNone(box) - 1);
        setImageDataSA(box->currentIndex());
    }
}

void GiQ::slotObjectRemovedSA(HxObject* object)
{
    if (object == gradientSource || object == gradientField) forgetGradient();
    if (!toolbox) { // it went with the window around it
        if (object == labelData || object == imageData) editor->stopEditing();
        return;
    }
    for (QComboBox* box : {toolbox->wImageData, toolbox->wLabelData}) {
        const QSignalBlocker quiet(box);
        const bool wasChosen = comboObject(box, box->currentIndex()) == object;
        for (int i = box->count() - 1; i >= 0; --i)
            if (comboObject(box, i) == object) box->removeItem(i);
        if (wasChosen) box->setCurrentIndex(indexOfNone(box)); // nothing else was chosen in its place
    }
    if (object == labelData)
        editor->stopEditing();
    else if (labelData && object == imageData)
        setImageDataSet(labelData);
}

void GiQ::slotObjectRenamedSA(HxObject* object, const char*)
{
    for (QComboBox* box : {toolbox->wImageData, toolbox->wLabelData})
        for (int i = 0; i < box->count(); ++i)
            if (comboObject(box, i) == object) box->setItemText(i, QString::fromUtf8(object->getLabel()));
}

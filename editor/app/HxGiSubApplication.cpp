#include "app/HxGiSubApplication.h"

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/HxMain.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformLabelField3.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QStackedLayout>
#include <QVariant>

#include <algorithm>

namespace {

HxGiSubApplication* theInstance = nullptr;

bool sameDims(HxRegScalarField3* a, HxRegScalarField3* b)
{
    return std::equal(a->lattice()->dims(), a->lattice()->dims() + 3, b->lattice()->dims());
}

bool isLabelField(HxRegScalarField3* field)
{
    return field && mcinterface_cast<HxLabelLattice3>(field);
}

/// What the editor can show: no labels, one value per voxel, uniform or stacked coordinates.
bool isImage(HxRegScalarField3* field)
{
    if (!field || isLabelField(field)) return false;
    const int kind = field->coords()->kind();
    return (kind == HxLatticeCoords::kUniform || kind == HxLatticeCoords::kStacked) &&
           HxGiEditor::isImageType(field->lattice()->primType()) && field->lattice()->numDataVars() == 1;
}

HxRegScalarField3* poolField(int i)
{
    return dynamic_cast<HxRegScalarField3*>(HxObjectPool::getThePool()->object(i));
}

/// The item of an object; null is that of "<None>". -1 if it has none.
int indexOf(const QComboBox* box, HxObject* object)
{
    for (int i = 0; i < box->count(); ++i)
        if (box->itemData(i).value<void*>() == object) return i;
    return -1;
}

/// `object` null: "<None>".
void addItem(QComboBox* box, HxObject* object)
{
    box->addItem(object ? QString::fromUtf8(object->getLabel()) : QStringLiteral("<None>"),
                 QVariant::fromValue<void*>(object));
}

/// An object that is not of the pool gets an item of its own.
void chooseItem(QComboBox* box, HxObject* object)
{
    const QSignalBlocker quiet(box);
    int index = indexOf(box, object);
    if (index < 0) {
        index = box->count() - 1; // before "<None>"
        box->insertItem(index, QString::fromUtf8(object->getLabel()), QVariant::fromValue<void*>(object));
    }
    box->setCurrentIndex(index);
}

} // namespace

HxGiSubApplication* HxGiSubApplication::instance()
{
    if (!theInstance) {
        theInstance = new HxGiSubApplication;
        theInstance->ref();
    }
    return theInstance;
}

void HxGiSubApplication::dropInstance()
{
    if (theInstance) theInstance->unref();
}

HxGiSubApplication::HxGiSubApplication()
{
    setHelpFile("GI.html", "kelvane");
}

HxGiSubApplication::~HxGiSubApplication()
{
    attachedEditor = nullptr;
    ownEditor = nullptr;
    if (theInstance == this) theInstance = nullptr;
}

HxData* HxGiSubApplication::currentData()
{
    return ownEditor ? ownEditor->getLabelData() : nullptr;
}

void HxGiSubApplication::initClass()
{
    HxClassRegistry::add("HxGiSubApplication", "HxSubApplication", &HxGiSubApplication::createInstance);
}

HxBase* HxGiSubApplication::createInstance()
{
    return instance();
}

McTypeId HxGiSubApplication::getClassTypeId()
{
    return McTypeId::declare<HxGiSubApplication, HxSubApplication>("HxGiSubApplication");
}

McTypeId HxGiSubApplication::getTypeId() const
{
    return getClassTypeId();
}

void HxGiSubApplication::onStart()
{
    if (labelsToOpen)
        editPair(labelsToOpen, imageToOpen);
    else
        startEditing(nullptr, nullptr);
    if (GiQ* gi = ownEditor->getGi()) gi->addMenu();
    HxSubApplication::onStart();
    if (GiQ* gi = ownEditor->getGi()) gi->focusViewer();
}

void HxGiSubApplication::onStop()
{
    if (ownEditor && ownEditor->getGi()) {
        ownEditor->notifyStop();
        ownEditor->getGi()->onHide();
        ownEditor->getGi()->removeMenu();
    }
    if (ownEditor && ownEditor->getLabelData()) ownEditor->getLabelData()->notifyUpdate(1);
    HxSubApplication::onStop();
}

void HxGiSubApplication::ensureEditor()
{
    if (!ownEditor) ownEditor = new HxGiEditor(toolboxWidget, viewerWidget);
}

GiQToolbox& HxGiSubApplication::toolbox() const
{
    return *ownEditor->getGi()->getToolbox();
}

/// In the main window's stacks of tool panels and viewers.
void HxGiSubApplication::showWidgets()
{
    HxMain* window = HxMain::getTheMain();
    window->toolPanelLayout()->setCurrentWidget(toolboxWidget);
    window->viewerLayout()->setCurrentWidget(viewerWidget);
}

void HxGiSubApplication::startEditing(HxData* data, HxGiEditor* attached)
{
    ensureEditor();
    if (attached) {
        McHandle<HxGiEditor> former = attachedEditor;
        attachedEditor = attached;
        if (former && former != attached) former->detach();
    }
    initDataSets(data);
    showWidgets();
}

void HxGiSubApplication::editPair(HxData* labels, HxData* image)
{
    ensureEditor();
    if (!image && ownEditor->getLabelData() == labels) image = ownEditor->getGi()->imageData;
    ownEditor->startEditing(labels, image);
    fillLabelBox(nullptr);
    fillImageBox(nullptr, nullptr);
    showPairInBoxes();
    showWidgets();
}

void HxGiSubApplication::open(HxData* labels, HxData* image)
{
    if (running() == this) {
        editPair(labels, image);
        return;
    }
    labelsToOpen = labels;
    imageToOpen = image;
    makeCurrent();
    labelsToOpen = imageToOpen = nullptr;
}

void HxGiSubApplication::stopEditing(HxGiEditor* attached)
{
    if (attachedEditor == attached) attachedEditor = nullptr;
}

void HxGiSubApplication::checkOtherEditor(HxData* data)
{
    if (!attachedEditor || attachedEditor->data() == data) return;
    McHandle<HxGiEditor> former = attachedEditor;
    attachedEditor = nullptr;
    former->detach();
}

// The pair

void HxGiSubApplication::initDataSets(HxData* data)
{
    auto* labels = dynamic_cast<HxRegScalarField3*>(data);
    HxRegScalarField3* image = nullptr;
    if (!labels) {
        labels = dynamic_cast<HxRegScalarField3*>(ownEditor->getLabelData());
        image = presentImageOf(labels);
    }
    labels = fillLabelBox(labels);
    if (!image) {
        if (auto* field = dynamic_cast<HxLabelField3*>(labels))
            image = field->imageConnection().source<HxRegScalarField3>();
    }
    image = fillImageBox(labels, image);
    if (!labels) return;
    ownEditor->startEditing(labels, image ? image : labels);
    showPairInBoxes();
}

/// The image that is edited over now, if it is one for these labels.
HxRegScalarField3* HxGiSubApplication::presentImageOf(HxRegScalarField3* labels) const
{
    auto* present = dynamic_cast<HxRegScalarField3*>(ownEditor->getGi()->imageData);
    return labels && present && present != labels && sameDims(present, labels) ? present : nullptr;
}

/// Gives back the candidate, or the first label field of the pool if there is none.
HxRegScalarField3* HxGiSubApplication::fillLabelBox(HxRegScalarField3* labels)
{
    QComboBox* box = toolbox().wLabelData;
    const QSignalBlocker quiet(box);
    box->clear();
    for (int i = 0; i < HxObjectPool::getThePool()->size(); ++i) {
        if (!isLabelField(poolField(i))) continue;
        addItem(box, poolField(i));
        if (!labels) labels = poolField(i);
    }
    addItem(box, nullptr);
    chooseItem(box, labels);
    return labels;
}

/// Gives back the candidate, or the first image of the pool that has the size of the labels.
HxRegScalarField3* HxGiSubApplication::fillImageBox(HxRegScalarField3* labels, HxRegScalarField3* image)
{
    QComboBox* box = toolbox().wImageData;
    const QSignalBlocker quiet(box);
    box->clear();
    int chosen = -1;
    for (int i = 0; i < HxObjectPool::getThePool()->size(); ++i) {
        HxRegScalarField3* field = poolField(i);
        if (!isImage(field)) continue;
        addItem(box, field);
        if (!labels || !sameDims(field, labels) || (image && image != field)) continue;
        image = field;
        chosen = box->count() - 1;
    }
    addItem(box, nullptr);
    // Without labels the first image is offered, so that "New" makes labels for it.
    if (chosen >= 0 || labels) box->setCurrentIndex(chosen >= 0 ? chosen : box->count() - 1);
    return image;
}

/// The editor may have found another image than the one that was asked for.
void HxGiSubApplication::showPairInBoxes()
{
    HxData* labels = ownEditor->getLabelData();
    if (!labels) return;
    HxData* image = ownEditor->getGi()->imageData;
    chooseItem(toolbox().wLabelData, labels);
    chooseItem(toolbox().wImageData, image == labels ? nullptr : image);
}

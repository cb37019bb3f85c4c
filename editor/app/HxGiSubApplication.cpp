#include "app/HxGiSubApplication.h"

#include "app/GiQ.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxLatticeCoords.h"
#include "hx/HxObjectPool.h"
#include "hx/HxUniformLabelField3.h"

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

/// Uniform or stacked coordinates and no labels.
bool isImage(HxRegScalarField3* field)
{
    if (!field || isLabelField(field)) return false;
    const int kind = field->lattice()->coords()->kind();
    return kind == 1 || kind == 2;
}

HxRegScalarField3* poolField(int i)
{
    return dynamic_cast<HxRegScalarField3*>(HxObjectPool::getThePool()->object(i));
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

HxGiSubApplication::HxGiSubApplication()
{
    setHelpFile("GI.html", "kelvane");
}

HxGiSubApplication::~HxGiSubApplication()
{
    attachedEditor = nullptr;
    ownEditor = nullptr;
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
    HxSubApplication::onStart();
}

void HxGiSubApplication::onStop()
{
    if (ownEditor && ownEditor->getLabelData()) ownEditor->getLabelData()->notifyUpdate(1);
    HxSubApplication::onStop();
}

void HxGiSubApplication::ensureEditor()
{
    if (!ownEditor) ownEditor = new HxGiEditor(HxGiEditor::kOwnEditor);
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
}

void HxGiSubApplication::editPair(HxData* labels, HxData* image)
{
    ensureEditor();
    if (!image && ownEditor->getLabelData() == labels) image = ownEditor->getGi()->imageData;
    ownEditor->startEditing(labels, image);
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

void HxGiSubApplication::initDataSets(HxData* data)
{
    HxRegScalarField3* labels = chooseLabels(data);
    if (!labels) return;
    ownEditor->startEditing(labels, chooseImage(data, labels));
}

HxRegScalarField3* HxGiSubApplication::chooseLabels(HxData* data) const
{
    if (auto* field = dynamic_cast<HxRegScalarField3*>(data)) return field;
    if (auto* field = dynamic_cast<HxRegScalarField3*>(ownEditor->getLabelData())) return field;
    for (int i = 0; i < HxObjectPool::getThePool()->size(); ++i)
        if (isLabelField(poolField(i))) return poolField(i);
    return nullptr;
}

HxRegScalarField3* HxGiSubApplication::chooseImage(HxData* data, HxRegScalarField3* labels) const
{
    HxRegScalarField3* image = nullptr;
    if (!dynamic_cast<HxRegScalarField3*>(data) && labels == ownEditor->getLabelData()) {
        auto* present = dynamic_cast<HxRegScalarField3*>(ownEditor->getGi()->imageData);
        if (present && present != labels && sameDims(present, labels)) image = present;
    }
    if (!image) {
        if (auto* field = dynamic_cast<HxLabelField3*>(labels))
            image = field->imageConnection().source<HxRegScalarField3>();
    }
    for (int i = 0; i < HxObjectPool::getThePool()->size() && !image; ++i) {
        HxRegScalarField3* field = poolField(i);
        if (isImage(field) && sameDims(field, labels)) image = field;
    }
    return image ? image : labels;
}

#include "app/HxGiEditor.h"

#include "app/GiQProtected.h"
#include "app/GiQTissueList.h"
#include "app/GiQToolbox.h"
#include "app/HxGiSubApplication.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "filters/GiFilter.h"
#include "hx/HxClassRegistry.h"
#include "hx/HxField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxMessage.h"
#include "hx/HxObjectPool.h"
#include "hx/HxResource.h"
#include "hx/HxUniformLabelField3.h"
#include "mc/McElementType.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr const char* kScriptName = "gi";
constexpr int kFirstTool = 3; // the magic wand

bool sameDims(const HxLattice& a, const HxLattice& b)
{
    return a.numDims() == 3 && b.numDims() == 3 && std::equal(a.dims(), a.dims() + 3, b.dims());
}

/// The object connected as image to a label field, if it can serve as one.
HxData* connectedImage(HxData* labels)
{
    auto* field = dynamic_cast<HxLabelField3*>(labels);
    return field ? field->imageConnection().source<HxRegScalarField3>() : nullptr;
}

bool hasLargeSide(const HxLattice& lattice, unsigned long& side)
{
    side = *std::max_element(lattice.dims(), lattice.dims() + 3);
    return side > HxGiEditor::kLargestSide;
}

} // namespace

struct HxGiEditor::Pair
{
    HxData* labels = nullptr;
    HxLabelLattice3* labelLattice = nullptr;
    HxData* image = nullptr;
    HxLattice3* imageLattice = nullptr;
};

HxGiEditor::HxGiEditor() : HxEditor(HxMutableLabelLattice::getClassTypeId())
{
    setLabel("HxGiEditor");
    if (HxSubApplication::hasSubApplications()) return;
    clearWindow();
    gi = std::make_unique<GiQProtected>(this);
    init();
}

HxGiEditor::HxGiEditor(QWidget* parent, QMenuBar* bar) : HxEditor(HxLabelLattice3::getClassTypeId())
{
    gi = std::make_unique<GiQProtected>(this, parent, bar);
    init();
}

HxGiEditor::HxGiEditor(QWidget*& toolboxOut, QWidget*& viewerOut)
    : HxEditor(HxLabelLattice3::getClassTypeId())
{
    gi = std::make_unique<GiQProtected>(this, toolboxOut, viewerOut);
    init();
}

void HxGiEditor::init()
{
    setHelpFile("GI.html", "kelvane");
    toolbox = gi->getToolbox();
    for (int i = 0; i < gi->viewers.size(); ++i)
        if (GiFrameBuffer* buffer = gi->viewers[i]->getFrameBuffer())
            buffer->addEventHandler(&HxGiEditor::handleEventCB, this);
}

HxGiEditor::~HxGiEditor()
{
    gi.reset();
    releaseAccess();
}

void HxGiEditor::initClass()
{
    HxClassRegistry::add("HxGiEditor", "HxEditor", [] { return new HxGiEditor; });
}

McTypeId HxGiEditor::getClassTypeId()
{
    return McTypeId::declare<HxGiEditor, HxEditor>("HxGiEditor");
}

McTypeId HxGiEditor::getTypeId() const
{
    return getClassTypeId();
}

bool HxGiEditor::typeCheck(HxData* data)
{
    return mcinterface_cast<HxMutableLabelLattice>(data) || mcinterface_cast<HxLabelLattice3>(data);
}

void HxGiEditor::clearWindow()
{
    constexpr int kHostMode = 0;
    const auto inWindow = [](HxEditor* other) {
        const auto* editor = dynamic_cast<HxGiEditor*>(other);
        return editor && editor->gi && editor->gi->getMode() == kHostMode && editor->data();
    };
    // Detaching may delete the editor, and with it change the list.
    for (;;) {
        const auto& editors = HxEditor::all();
        const auto found = std::find_if(editors.begin(), editors.end(), inWindow);
        if (found == editors.end()) return;
        const McHandle<HxEditor> leaving(*found);
        leaving->detach();
    }
}

GiQ* HxGiEditor::activeGi()
{
    HxGiEditor* own = HxGiSubApplication::instance()->getEditor();
    if (own && own->getLabelData()) return own->getGi();
    for (HxEditor* other : HxEditor::all()) {
        auto* editor = dynamic_cast<HxGiEditor*>(other);
        if (editor && editor->getLabelData()) return editor->getGi();
    }
    return nullptr;
}

HxGiEditor* HxGiEditor::openInWindow(HxData* labels, HxData* image)
{
    auto* present = dynamic_cast<HxGiEditor*>(HxEditor::editorOf(labels));
    if (present && present->gi && present->getLabelData() == labels) {
        if (image) present->startEditing(labels, image);
        return present->getLabelData() ? present : nullptr;
    }
    clearWindow();
    const McHandle<HxGiEditor> editor(new HxGiEditor);
    editor->imageToOpen = image;
    editor->attach(labels);
    editor->imageToOpen = nullptr;
    if (editor->getLabelData() == labels) return editor;
    editor->detach();
    return nullptr;
}

const char* HxGiEditor::scriptName() const
{
    return gi ? getLabel() : kScriptName;
}

McString HxGiEditor::unfinishedWork() const
{
    if (!getLabelData() || !gi->selection->isSet()) return McString();
    return McString::printf("the selection over \"%s\", which was not added to a material",
                            getLabelData()->getLabel());
}

HxData* HxGiEditor::getLabelData() const
{
    return gi ? gi->labelData : nullptr;
}

void HxGiEditor::setRescaleInterceptSlope(const HxParamBundle& bundle)
{
    if (gi) gi->setRescaleInterceptSlope(&bundle);
}

bool HxGiEditor::isImageType(int hostType)
{
    return mcIsElementCode(hostType);
}

void HxGiEditor::preInit(float min, float max, const McHistogram& histogram)
{
    if (!gi) return;
    gi->preInit(min, max, histogram);
    preInitialised = true;
}

void HxGiEditor::preInitShowOnly()
{
    if (!gi) return;
    gi->preInitShowOnly();
    preInitialised = true;
}

void HxGiEditor::notifyStop()
{
    if (toolbox && toolbox->tissueList) toolbox->tissueList->notifyStop();
}

float HxGiEditor::eval(HxLattice* lattice, const McVec3i& index)
{
    if (!lattice || !isImageType(lattice->primType())) return 0;
    return lattice->getVoxel(index);
}

void HxGiEditor::startEditing(HxData* labels)
{
    if (gi) {
        startEditing(labels, imageToOpen);
        return;
    }
    for (HxSubApplicationEntry& entry : HxResource::mSubApplications) {
        if (entry.className != "HxGiSubApplication") continue;
        if (!entry.instance) entry.instance = HxGiSubApplication::instance();
        HxGiSubApplication::instance()->startEditing(labels, this);
        entry.instance->makeCurrent();
        return;
    }
}

bool HxGiEditor::isBound(HxData* labels, HxData* image) const
{
    if (!labels || !image || labels != gi->labelData || image != gi->imageData) return false;
    const auto* labelLattice = mcinterface_cast<HxLabelLattice3>(labels);
    const auto* imageLattice = mcinterface_cast<HxLattice>(image);
    return labelLattice && imageLattice && sameDims(*labelLattice, *imageLattice) &&
           std::equal(gi->selection->dims, gi->selection->dims + 3, labelLattice->dims());
}

void HxGiEditor::startEditing(HxData* labels, HxData* image)
{
    if (!gi || isBound(labels, image)) return;
    Pair pair;
    pair.labels = labels;
    pair.labelLattice = mcinterface_cast<HxLabelLattice3>(labels);
    unsigned long side = 0;
    if (pair.labelLattice && hasLargeSide(*pair.labelLattice, side)) {
        HxMessage::getTheMsg()->printf("%s has a side of %lu voxels; the editor takes sides up to %lu.",
                                       labels->getLabel(), side, kLargestSide);
        return;
    }
    HxGiSubApplication::instance()->checkOtherEditor(labels);
    // A gradient image that is to be edited over is no by-product any more, which would end with the old
    // pair.
    if (image && image == gi->gradientField) gi->gradientField = nullptr;
    gi->clear();
    auto* field = dynamic_cast<HxField3*>(labels);
    if (!pair.labelLattice || !field) return;

    float min = 0, max = 0;
    field->getRange(min, max);
    HxParamBundle* materials = pair.labelLattice->materials();
    if (!materials) return;
    repairMaterials(*materials, static_cast<int>(max));

    pair.image = image ? image : connectedImage(labels);
    findImage(pair);
    try {
        bind(pair);
    } catch (const McMemoryException& e) {
        stopEditing();
        HxMessage::getTheMsg()->memError(e.size());
    }
}

void HxGiEditor::repairMaterials(HxParamBundle& materials, int maxLabel)
{
    const int n = materials.nBundles();
    if (n >= maxLabel + 1) return;
    HxMessage::getTheMsg()->printf("Warning: max label is %d, but max material id is %d.", maxLabel, n - 1);
    HxMessage::getTheMsg()->printf("Creating %d new materials.", maxLabel + 1 - n);
    for (int k = n; k <= maxLabel; ++k)
        materials.insert(new HxParamBundle(k == 0 ? "Exterior" : McString::printf("Material%d", k)));
}

/// Keeps the pair's image if it fits, else looks for one in the pool, else takes the labels.
void HxGiEditor::findImage(Pair& pair)
{
    const auto fits = [&](HxLattice3* lattice) {
        return lattice && HxGiEditor::isImageType(lattice->primType()) && lattice->numDataVars() == 1 &&
               sameDims(*lattice, *pair.labelLattice);
    };
    pair.imageLattice = mcinterface_cast<HxLattice3>(pair.image);
    if (fits(pair.imageLattice)) return;

    McString wanted;
    const bool hasWanted = pair.labels->parameters.findString("ImageData", wanted);
    HxData* candidate = nullptr;
    const HxObjectPool* pool = HxObjectPool::getThePool();
    for (int i = 0; i < pool->size(); ++i) {
        auto* data = dynamic_cast<HxData*>(pool->object(i));
        auto* lattice = mcinterface_cast<HxLattice3>(data);
        if (data == pair.labels || !lattice || mcinterface_cast<HxLabelLattice>(data)) continue;
        if (!isImageType(lattice->primType()) || lattice->numDataVars() != 1) continue;
        if (!candidate || (hasWanted && wanted == data->getLabel())) candidate = data;
        if (!sameDims(*mcinterface_cast<HxLattice3>(candidate), *pair.labelLattice)) candidate = nullptr;
    }
    if (!candidate) {
        HxMessage::getTheMsg()->printf("No matching image volume found.\n");
        candidate = pair.labels;
    }
    pair.image = candidate;
    pair.imageLattice = mcinterface_cast<HxLattice3>(candidate);
}

void HxGiEditor::bind(const Pair& pair)
{
    float min, max;
    gi->initRangeSliders(pair.image, min, max);
    gi->setDataWindow(min, max, false);
    gi->setColormap(nullptr);
    preInitialised = false;
    gi->materials = pair.labelLattice->materials();
    toolbox->setTissues(gi->materials);
    void* data = holdImage(pair.imageLattice);
    gi->labelData = pair.labels;
    gi->labelLattice = pair.labelLattice;
    gi->imageData = pair.image;
    gi->imageLattice = pair.imageLattice;
    gi->setVolumeOfType(pair.imageLattice->primType(), pair.imageLattice->dims(), data, pair.labelLattice);
    gi->initTools();
    toolbox->setTool(kFirstTool);
    gi->setMenuEnabled(true);
    gi->connectData();
    gi->redrawViewAll();
    // Who shows what is edited, and what "Save" means, has to look again.
    HxObjectPool::getThePool()->updateViewerToggles();
}

void* HxGiEditor::holdImage(HxLattice3* lattice)
{
    releaseAccess();
    access = lattice->access();
    return access->rawData(lattice->dims());
}

void HxGiEditor::releaseAccess()
{
    if (access) access->release();
    access = nullptr;
}

void HxGiEditor::stopEditing()
{
    if (!gi) {
        HxGiSubApplication::instance()->stopEditing(this);
        return;
    }
    gi->clear();
    for (int i = 0; i < gi->filters.size(); ++i)
        if (gi->filters[i]) gi->filters[i]->destroyWidget();
    releaseAccess();
    preInitialised = false;
    HxObjectPool::getThePool()->updateViewerToggles();
}

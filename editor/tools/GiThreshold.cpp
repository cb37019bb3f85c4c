#include "tools/GiThreshold.h"

#include "core/Gi.h"
#include "core/GiBusy.h"
#include "core/GiSelectionRow.h"
#include "display/GiViewer.h"
#include "hx/HxMessage.h"
#include "hx/HxSettingsMgr.h"
#include "mc/McMemoryException.h"
#include "tools/GiPixelTests.h"
#include "tools/giGuarded.h"
#include "tools/giSelectWindow.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr int kAllMaterials = -1;
constexpr int kUnsignedInt = 4; // in Gi's codes of element types

/// kept: the threshold knows no images of unsigned 32-bit numbers. Over one nothing is selected or taken
/// back; the step of undo and the notice come all the same, as scripts count on one of each per call.
bool canCompare(const Gi& gi)
{
    return gi.imageSlices.data() && gi.primType != kUnsignedInt;
}

} // namespace

GiThreshold::GiThreshold(Gi* owner) : GiTool(owner)
{
    name = "Threshold";
}

void GiThreshold::select()
{
    last3D = false;
    maskingWasOn = gi->maskingEnabled();
    gi->setMaskingEnabled(true);
}

void GiThreshold::deselect(GiFrameBuffer*)
{
    if (!maskingWasOn) gi->setMaskingEnabled(false);
}

void GiThreshold::createWidget(QWidget* parent)
{
    parent->setObjectName("GiThreshold");
    auto* grid = new QGridLayout(parent);

    auto* optionsLabel = new QLabel("Options:");
    optionsLabel->setObjectName("wOptionsLabel");
    allSlicesBox = new QCheckBox("All slices");
    allSlicesBox->setObjectName("wAllSlicesCheckBox");
    allSlicesBox->setChecked(true);
    currentMaterialBox = new QCheckBox("Current material only");
    currentMaterialBox->setObjectName("wCurrentMaterialCheckBox");
    auto* options = new QHBoxLayout;
    options->addWidget(allSlicesBox);
    options->addWidget(currentMaterialBox);
    options->addStretch();
    grid->addWidget(optionsLabel, 0, 0);
    grid->addLayout(options, 0, 1);

    auto* actionLabel = new QLabel("Action:");
    actionLabel->setObjectName("wSizeLabel");
    auto* button = new QPushButton("Select");
    button->setObjectName("wSelectButton");
    auto* actions = new QHBoxLayout;
    actions->addWidget(button);
    actions->addStretch();
    grid->addWidget(actionLabel, 1, 0);
    grid->addLayout(actions, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);

    connect(button, &QPushButton::clicked, this, giGuardedSlot(this, &GiThreshold::compute));
}

int GiThreshold::chosenMaterial() const
{
    return currentMaterialBox && currentMaterialBox->isChecked() ? gi->currentTissue : kAllMaterials;
}

void GiThreshold::compute()
{
    const GiViewer* viewer = gi->getCurrentViewer();
    if (!gi->imageLattice || !viewer) return;
    HxMessage* message = HxMessage::getTheMsg();
    if (!viewer->maskingEnabled()) {
        message->Info("You have to enable masking before using the threshold tool!");
        return;
    }
    try {
        if (allSlices())
            computeVolume(chosenMaterial());
        else
            computeSlice(*viewer, chosenMaterial());
    } catch (const McMemoryException& exception) { // no room for the undo step: nothing has changed
        message->memError(exception.size());
    }
}

void GiThreshold::computeSlice(const GiViewer& viewer, int material)
{
    const int orientation = viewer.getOrientation(), slice = viewer.getSlice();
    // kept: the whole volume, also for one slice. An earlier result over all slices may go with it.
    gi->saveUndoInformationForVolume(1, 0, nullptr);
    if (last3D) gi->selection->clear();
    if (canCompare(*gi)) {
        float window[2];
        gi->getToolDataWindow(window[0], window[1]);
        GiSelection2D pixels;
        gi->selection->getSlice(&pixels, orientation, slice);
        GiPixelTests tests(*gi, orientation, slice);
        tests.requireValue(window);
        if (material != kAllMaterials) tests.requireLabel(material);
        pixels.clear();
        const int width = static_cast<int>(pixels.width), height = static_cast<int>(pixels.height);
        for (int row = 0; row < height; ++row)
            giChangeRow(pixels, 0, row, tests.accept(0, row, width), pixels.width, true);
    }
    gi->touchData(1, 0, orientation, slice, 0, 0);
    gi->updateSelectionBoxes();
    gi->redraw();
    last3D = false;
}

void GiThreshold::computeVolume(int material)
{
    const GiBusy busy;
    gi->saveUndoInformationForVolume(1, 0, nullptr);
    if (canCompare(*gi)) {
        float window[2];
        gi->getToolDataWindow(window[0], window[1]);
        const auto* labels = static_cast<const unsigned char*>(gi->labelSlices.data());
        giSelectWindow(gi->primType, gi->imageSlices.data(), window,
                       material == kAllMaterials ? nullptr : labels, material, gi->selection->bits,
                       HxSettingsMgr::getInstance()->numThreads());
    }
    gi->touchData(1, 0, 0, -1, 0, 0);
    gi->updateSelectionBoxes();
    gi->redraw();
    last3D = true;
}

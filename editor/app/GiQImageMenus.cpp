// "Gray image" and "Gradient image" of the menus in the host's window: which of the pool's images the viewers
// show, and which one the contour tools take for the gradient.

#include "app/GiQ.h"
#include "hx/HxLattice3.h"
#include "hx/HxMessage.h"
#include "hx/HxRegScalarField3.h"
#include "mc/McInterface.h"
#include "mc/McMemoryException.h"
#include "tools/giGuarded.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace {

/// One entry per image, its data the position; that of the memory in use is checked.
void listImages(QMenu* menu, const McDArray<HxData*>& images, const void* inUse)
{
    menu->clear();
    for (int i = 0; i < images.size(); ++i) {
        QAction* action = menu->addAction(QString::fromUtf8(images[i]->getLabel()));
        action->setData(i);
        action->setCheckable(true);
        action->setChecked(mcinterface_cast<HxLattice3>(images[i])->dataPtr() == inUse);
    }
}

} // namespace

void GiQ::buildImageMenus()
{
    segmentationMenu->addSeparator();
    greyImageMenu = segmentationMenu->addMenu(tr("Gray image"));
    connect(greyImageMenu, &QMenu::triggered, this, giGuardedSlot(this, &GiQ::menuGreyImageChanged));
    connect(greyImageMenu, &QMenu::aboutToShow, this, &GiQ::mapMenu);
    gradientImageMenu = segmentationMenu->addMenu(tr("Gradient image"));
    connect(gradientImageMenu, &QMenu::triggered, this, &GiQ::menuGradientImageChanged);
    connect(gradientImageMenu, &QMenu::aboutToShow, this, &GiQ::mapMenu); // it may be opened first
}

void GiQ::mapMenu()
{
    updateUndoSensitivity();
    const McDArray<HxData*> images = imagesOfThisSize();
    listImages(greyImageMenu, images, imageSlices.data());
    listImages(gradientImageMenu, images, gradientImage.data());
    if (!gradientField) gradientImageMenu->addAction("Default-GradientImage")->setData(images.size());
}

void GiQ::menuGreyImageChanged(QAction* action)
{
    const McDArray<HxData*> images = imagesOfThisSize();
    const int i = action->data().toInt();
    if (i >= 0 && i < images.size()) setImageDataSet(images[i]);
}

void GiQ::menuGradientImageChanged(QAction* action)
{
    const McDArray<HxData*> images = imagesOfThisSize();
    const int i = action->data().toInt();
    if (i >= 0 && i < images.size()) {
        useAsGradient(images[i]);
        return;
    }
    forgetGradient();
    try {
        generateGradientImage();
    } catch (const McMemoryException& e) {
        HxMessage::getTheMsg()->memError(e.size());
    }
}

/// The view keeps no memory alive, so the editor hears of the image's end and of a new size.
void GiQ::useAsGradient(HxData* image)
{
    const auto* lattice = mcinterface_cast<HxLattice3>(image);
    if (gradientSource)
        disconnect(gradientSource, &HxData::dataObjectTouched, this, &GiQ::gradientSourceTouched);
    gradientSource = image;
    gradientImage.init(lattice->dims(), McTypedPointer(lattice->dataPtr(), lattice->primType()));
    connect(image, &HxData::dataObjectTouched, this, &GiQ::gradientSourceTouched);
}

void GiQ::gradientSourceTouched()
{
    const auto* lattice = mcinterface_cast<HxLattice3>(gradientSource.data());
    if (!lattice || lattice->dataPtr() != gradientImage.data() ||
        !std::equal(lattice->dims(), lattice->dims() + 3, gradientImage.dims()))
        forgetGradient();
}

/// The generated one leaves the pool; the next tool that wants a gradient makes a new one.
void GiQ::forgetGradient()
{
    if (gradientSource)
        disconnect(gradientSource, &HxData::dataObjectTouched, this, &GiQ::gradientSourceTouched);
    gradientSource = nullptr;
    const unsigned long none[3] = {0, 0, 0};
    gradientImage.init(none, McTypedPointer());
    removeGradientField();
}

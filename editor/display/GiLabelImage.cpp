#include "display/GiLabelImage.h"

#include "core/Gi.h"
#include "core/GiSelection2D.h"
#include "hx/HxMatDatabase.h"
#include "hx/HxParamBundle.h"

#include <algorithm>
#include <cstring>

GiLabelImage::GiLabelImage(int* locked, Gi* owner) : gi(owner)
{
    view.locked = locked;
    gi->drawStyle2D[0] = gi->lastDrawStyle2D[0] = 0;
    std::fill(gi->drawStyle2D + 1, gi->drawStyle2D + 256, 1);
    std::fill(gi->lastDrawStyle2D + 1, gi->lastDrawStyle2D + 256, 1);
    std::fill(gi->visible3D, gi->visible3D + 256, 0);
}

McBox2i GiLabelImage::getBoundingBox()
{
    const int w = static_cast<int>(view.width), h = static_cast<int>(view.height);
    // kept: the position counts twice at the far corner. It is 0 in every viewer; a host that moves
    // the overlay relies on the box reaching beyond it.
    return McBox2i(positionX, positionY, 2 * positionX + w - 1, 2 * positionY + h - 1);
}

void GiLabelImage::setMemory(unsigned char* memory, int xStride, unsigned long yStride)
{
    view.memory = memory;
    view.xStride = xStride;
    view.yStride = yStride;
}

void GiLabelImage::resize(int width, int height)
{
    const auto w = static_cast<unsigned long>(width), h = static_cast<unsigned long>(height);
    if (view.width == w && view.height == h) return;
    view.width = w;
    view.height = h;
    view.memory = view.prob = view.prob2 = nullptr;
}

void GiLabelImage::clear()
{
    const unsigned long n = view.width * view.height;
    if (view.memory) std::memset(view.memory, 0, n);
    if (view.prob) std::memset(view.prob, 255, n);
    if (view.prob2) std::memset(view.prob2, 255, n);
}

void GiLabelImage::setColor(Gi* gi, int index, int r, int g, int b)
{
    gi->materialColors[index][0] = static_cast<unsigned char>(r);
    gi->materialColors[index][1] = static_cast<unsigned char>(g);
    gi->materialColors[index][2] = static_cast<unsigned char>(b);
}

void GiLabelImage::setColor(Gi* gi, HxParamBundle& materials)
{
    for (int i = 0; i < 256; ++i) setColor(gi, i, 0, 255, 0);
    const int n = std::min(materials.nBundles(), 256); // a label is a byte
    for (int i = 0; i < n; ++i) {
        const HxParamBundle* material = materials.bundle(i);
        float rgb[3];
        if (!material->findColor(rgb)) {
            const McColor color = HxMatDatabase::getTheDatabase()->getColor(material->getName());
            rgb[0] = color.r;
            rgb[1] = color.g;
            rgb[2] = color.b;
        }
        const auto byte = [](float component) {
            return static_cast<int>(std::clamp(component, 0.0f, 1.0f) * 255);
        };
        setColor(gi, i, byte(rgb[0]), byte(rgb[1]), byte(rgb[2]));
    }
}

void GiLabelImage::addSelection(GiSelection2D* selection, int tissue)
{
    if (view.memory) view.addSelection(*selection, tissue);
}

void GiLabelImage::replaceBySelection(GiSelection2D* selection, int tissue)
{
    if (view.memory) view.replaceBySelection(*selection, tissue, gi->seedGuard());
}

void GiLabelImage::subtractSelection(GiSelection2D& selection, int tissue)
{
    if (view.memory) view.subtractSelection(selection, tissue, gi->seedGuard());
}

// Frame buffer: what it consists of. Coordinates, drawing, the grey picture and events have files of
// their own.

#include "display/GiFrameBuffer.h"

#include "display/GiShape.h"
#include "mc/McMemory.h"
#include "mc/McMemoryException.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kDefaultAlpha = 96;
constexpr int kExitUnsupportedPixels = 99;

/// Another drawing function while it lives, also when a shape throws.
class OtherFunction
{
public:
    OtherFunction(GiFrameBuffer& target, GiFrameBuffer::Function f) : buffer(target), former(target.function)
    {
        buffer.setFunction(f);
    }
    ~OtherFunction() { buffer.setFunction(former); }
    OtherFunction(const OtherFunction&) = delete;
    OtherFunction& operator=(const OtherFunction&) = delete;

private:
    GiFrameBuffer& buffer;
    GiFrameBuffer::Function former;
};

} // namespace

GiFrameBuffer::GiFrameBuffer()
{
    defaultValues();
    setPixelType(kXRGB);
}

GiFrameBuffer::GiFrameBuffer(const McVec2i& zoomed, const McVec2i& mem, PixelType type) : zoomedSize(zoomed)
{
    if (type != kXBGR && type != kRGBX && type != kRGB16) {
        std::fputs("Unsupported pixel type\n", stderr);
        std::exit(kExitUnsupportedPixels);
    }
    defaultValues();
    setPixelType(type);
    GiFrameBuffer::setMemSize(mem);
    clear();
}

GiFrameBuffer::~GiFrameBuffer()
{
    for (GiShape* shape : shapes) shape->unref();
    std::free(memory);
}

void GiFrameBuffer::defaultValues()
{
    selectionAlpha = kDefaultAlpha;
    flags = kWantsScrollBarH | kWantsScrollBarV;
    flipX = flipY = rotated = swapAxes = false;
    clipBox = McBox2i(1, 1, 0, 0);
    selectionLayers = 0;
    selectionRed = 255;
    selectionGreen = selectionBlue = 0;
    currentPixel = ~0u;
    lineWidth = 1;
    function = kDraw;
    browsing = false;
    setPixelType(pixelType); // the selection's colour in this format
}

void GiFrameBuffer::setPixelType(PixelType type)
{
    pixelType = type;
    bytesPerPixel = type == kRGB16 ? 2 : 4;
    bytesPerRow = static_cast<unsigned long>(memSize.x) * static_cast<unsigned long>(bytesPerPixel);
    selectionPixel = pack(selectionRed, selectionGreen, selectionBlue);
    secondPixel = pack(0, 0, 255);
}

unsigned int GiFrameBuffer::pack(int r, int g, int b) const
{
    const auto ur = static_cast<unsigned int>(r), ug = static_cast<unsigned int>(g),
               ub = static_cast<unsigned int>(b);
    switch (pixelType) {
    case kXBGR:
        return ur | ug << 8 | ub << 16;
    case kXRGB:
        return ub | ug << 8 | ur << 16;
    case kBGRX:
        return ur << 8 | ug << 16 | ub << 24;
    case kRGBX:
        return ur << 24 | ug << 16 | ub << 8;
    case kRGB16:
        return (ug & 252) << 3 | ub >> 3 | (ur & 248) << 8;
    }
    return 0;
}

void GiFrameBuffer::setColor(int r, int g, int b)
{
    red = r;
    green = g;
    blue = b;
    currentPixel = pack(r, g, b);
}

void GiFrameBuffer::setMemSize(const McVec2i& size)
{
    if (memory && size == memSize) return;
    const unsigned long rowBytes =
        static_cast<unsigned long>(size.x) * static_cast<unsigned long>(bytesPerPixel);
    const unsigned long bytes = mcByteCount(rowBytes, static_cast<unsigned long>(size.y));
    void* block = bytes > kMcAddressSpace ? nullptr : std::realloc(memory, std::max(bytes, 1ul));
    if (!block) throw McMemoryException(bytes);
    memory = static_cast<unsigned char*>(block);
    memSize = size;
    bytesPerRow = rowBytes;
}

void GiFrameBuffer::clear()
{
    constexpr int kGreyByte = 128;
    if (memory) std::memset(memory, kGreyByte, bytesPerRow * static_cast<unsigned long>(memSize.y));
}

void GiFrameBuffer::setFlip(int x, int y)
{
    flipX = x != 0;
    flipY = y != 0;
}

void GiFrameBuffer::setRotate(int from, int to)
{
    rotated = ((to - from + (rotated ? 1 : 0)) & 3) != 0;
}

void GiFrameBuffer::setScrollBars(int horizontal, int vertical, GiFrameBuffer* barH, GiFrameBuffer* barV)
{
    flags = static_cast<unsigned char>((flags & kRenderingOff) | (horizontal ? kWantsScrollBarH : 0) |
                                       (vertical ? kWantsScrollBarV : 0));
    scrollBarH = barH;
    scrollBarV = barV;
}

int GiFrameBuffer::addShape(GiShape* shape)
{
    shape->ref();
    return shapes.append(shape);
}

int GiFrameBuffer::removeShape(GiShape* shape)
{
    for (int i = 0; i < shapes.size(); ++i) {
        if (shapes[i] != shape) continue;
        shapes.remove(i);
        shape->unref();
        return 0;
    }
    return 1;
}

bool GiFrameBuffer::hasShape(const GiShape* shape) const
{
    return std::find(shapes.begin(), shapes.end(), shape) != shapes.end();
}

void GiFrameBuffer::addEventHandler(EventHandler handler, void* data)
{
    handlers.append(handler);
    handlerData.append(data);
}

void GiFrameBuffer::removeEventHandler(EventHandler handler)
{
    for (int i = 0; i < handlers.size(); ++i) {
        if (handlers[i] != handler) continue;
        handlers.remove(i);
        handlerData.remove(i);
        return;
    }
}

void GiFrameBuffer::setSelection(GiSelection2D* newSelection, int layers)
{
    selection = newSelection;
    selectionLayers = layers;
}

void GiFrameBuffer::render(GiShape* except)
{
    render(window(), except);
}

void GiFrameBuffer::render(const McBox2i& box, GiShape* except)
{
    if (box.isEmpty() || (flags & kRenderingOff)) return;
    setClipBox(box);
    if (clipBox.isEmpty()) return;
    selectionLayers = std::min(selectionLayers, shapes.size());

    int i = 0;
    if (selection && selection->hidden == 0) {
        const OtherFunction blending(*this, kBlend);
        for (; i < selectionLayers; ++i)
            if (shapes[i] != except) shapes[i]->render(this, clipBox);
    }
    for (; i < shapes.size(); ++i)
        if (shapes[i] != except) shapes[i]->render(this, clipBox);
}

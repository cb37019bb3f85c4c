#pragma once

#include "display/GiShape.h"
#include "mc/McDArray.h"
#include "mc/McHandle.h"

class HxColormap;

/// The lowest shape of a slice viewer: one slice of the image, turned into display pixels once, so that
/// scrolling, zooming and overlays look nothing up again.
///
/// Also keeps the window that marks voxels for the tools, and their tint.
class GiGreyImage : public GiShape
{
public:
    GiGreyImage();
    ~GiGreyImage() override;
    GiGreyImage(const GiGreyImage&) = delete;
    GiGreyImage& operator=(const GiGreyImage&) = delete;

    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    int handleEvent(GiFrameBuffer*, McEvent*) override { return 0; }
    McBox2i getBoundingBox() override;

    /// Takes a slice over: nothing points into `data` afterwards. Null data change nothing.
    ///
    /// minimum, maximum  the data window; values are compared as floats, NaN counts as below it
    /// data              first element; xStride and yStride in bytes
    /// throws McMemoryException
    ///
    /// For the seven element types of an image.
    template <class T>
    void setImage(unsigned long newWidth, unsigned long newHeight, float minimum, float maximum,
                  const T* data, int xStride, unsigned long yStride);

    // These only store; the next setImage() shows them.
    void setMaskingEnabled(bool on) { maskingEnabled = on; }
    void setMaskingOverlay(bool on) { maskingOverlay = on; }
    void setMaskingWindow(float minimum, float maximum);
    /// Null for grey.
    void setColormap(HxColormap* map);

    /// Forgets the slice.
    void clear();

    // A height per row, for a host that draws the slice as a relief.
    /// Evenly rising to `s`.
    void setHeightScales(float s);
    /// range   heights of the lower end of the first and the upper end of the last row
    /// coords  positions of the rows; a row ends midway to the next, the last one half a step on
    /// Nothing happens with less than two rows.
    void setHeightScales(const float* range, const float* coords);

    /// Display pixels of the grey values 0 to 255, and of what lies outside the data window.
    static void initPackedColors(HxColormap* map, unsigned int* table, unsigned int& below,
                                 unsigned int& above);

    unsigned long width = 256, height = 256;
    unsigned char* grey = nullptr;  // one byte per pixel
    unsigned int* packed = nullptr; // one display pixel per pixel
    McDArray<float> heightScales;
    McHandle<HxColormap> colormap;
    bool maskingEnabled = false;     // tools use the masking window
    bool maskingOverlay = false;     // pixels inside it are tinted
    float maskingWindow[2] = {0, 1}; // both included
    int positionX = 0, positionY = 0;

private:
    void reserve(unsigned long newWidth, unsigned long newHeight);
};

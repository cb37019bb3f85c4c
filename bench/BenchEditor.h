#pragma once

#include "display/GiFrameBuffer.h"
#include "display/GiMemoryViewer.h"
#include "display/GiWindowless.h"
#include "hx/HxLabelField3.h"
#include "hx/HxLabelLattice3.h"
#include "hx/HxUniformLabelField3.h"

#include <cstring>
#include <vector>

/// An editor with a label field, all of it background, and three viewers by orientation. Rows of all three
/// run downward.
class BenchEditor
{
public:
    /// `size` voxels along each side.
    explicit BenchEditor(unsigned long size) : BenchEditor(size, size, size) {}
    BenchEditor(unsigned long nx, unsigned long ny, unsigned long nz)
        : dims{nx, ny, nz}, field(new HxUniformLabelField3(dims))
    {
        gi.materials = lattice()->materials();
        for (int o = 0; o < 3; ++o) {
            auto* viewer = new GiMemoryViewer("viewer", &gi);
            viewer->ref();
            viewer->setOrientation(o);
            viewer->setFlip(0, 0, 1);
            gi.viewers.append(viewer);
        }
    }

    HxLabelLattice3* lattice() { return field->labelLattice(); }
    unsigned char* labels() { return lattice()->getLabels(); }
    GiViewer& viewer(int orientation) { return *gi.viewers[orientation]; }
    GiMemoryFrameBuffer& buffer(int orientation)
    {
        return *static_cast<GiMemoryFrameBuffer*>(viewer(orientation).getFrameBuffer());
    }

    /// Shows an image, which must outlive its use here.
    void setImage(unsigned char* image) { gi.setVolumeByte(dims, 0, image, lattice()); }
    void setImage(unsigned short* image) { gi.setVolumeUnsignedShort(dims, 0, image, lattice()); }
    void setImage(float* image) { gi.setVolumeFloat(dims, 0, image, lattice()); }

    /// All viewers get this zoom, and a window that shows the whole slice.
    void setZoom(int zoom)
    {
        const int side = static_cast<int>(dims[0]) * zoom;
        gi.setZoomFactor(static_cast<float>(zoom));
        for (int o = 0; o < 3; ++o) buffer(o).setWindowSize(McVec2i(side, side));
    }

    const unsigned long dims[3];
    McHandle<HxUniformLabelField3> field;
    GiWindowless gi;
};

/// The memory image, rows from the top, without the unused byte of a pixel.
inline std::vector<unsigned int> benchPicture(const GiFrameBuffer& buffer)
{
    const auto width = static_cast<std::size_t>(buffer.memSize.x),
               height = static_cast<std::size_t>(buffer.memSize.y);
    std::vector<unsigned int> pixels(width * height);
    for (std::size_t y = 0; y < height; ++y)
        std::memcpy(&pixels[y * width], buffer.memory + y * buffer.bytesPerRow, width * sizeof(unsigned int));
    for (unsigned int& pixel : pixels) pixel &= 0xFFFFFFu;
    return pixels;
}

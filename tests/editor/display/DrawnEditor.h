#pragma once

#include "display/GiFrameBuffer.h"
#include "display/GiMemoryViewer.h"
#include "editor/display/TestEditor.h"

#include <random>

/// An editor with three viewers that draw into memory, over an image of any element type and labels beside
/// it.
class DrawnEditor
{
public:
    DrawnEditor(unsigned long nx, unsigned long ny, unsigned long nz,
                int coordKind = HxLatticeCoords::kUniform)
        : dims{nx, ny, nz},
          field((new HxLabelLattice3(new HxLatticeCoords(coordKind, dims)))->create()),
          gi(0)
    {
        for (int o = 0; o < 3; ++o) {
            auto* viewer = new GiMemoryViewer("viewer", &gi);
            viewer->ref();
            viewer->setOrientation(o);
            gi.viewers.append(viewer);
        }
        gi.panel.setActiveViewer(gi.viewers[2]);
        gi.materials = lattice()->materials();
        gi.imageLattice = lattice();
        // Every voxel covers as many screen pixels along each axis as the zoom factor says.
        const float box[6] = {0, static_cast<float>(nx), 0, static_cast<float>(ny),
                              0, static_cast<float>(nz)};
        lattice()->coords()->setBoundingBox(box);
    }

    HxLabelLattice3* lattice() { return field->labelLattice(); }
    unsigned char* labels() { return lattice()->getLabels(); }
    unsigned long size() const { return dims[0] * dims[1] * dims[2]; }
    GiViewer& viewer(int i) { return *gi.viewers[i]; }
    GiMemoryFrameBuffer& buffer(int i)
    {
        return *static_cast<GiMemoryFrameBuffer*>(gi.viewers[i]->getFrameBuffer());
    }
    void setVoxelSize(float x, float y, float z)
    {
        const float step[3] = {x, y, z};
        float box[6] = {};
        for (int i = 0; i < 3; ++i) box[2 * i + 1] = step[i] * static_cast<float>(dims[i] - 1);
        lattice()->coords()->setBoundingBox(box);
    }

    const unsigned long dims[3];
    McHandle<HxLabelField3> field;
    TestGi gi;
};

inline std::vector<int> listed(const McDArray<int>& array)
{
    return {array.begin(), array.end()};
}

/// The memory image, lower 24 bits of each pixel.
inline std::vector<unsigned int> pictureOf(const GiFrameBuffer& buffer)
{
    std::vector<unsigned int> pixels;
    for (int y = 0; y < buffer.memSize.y; ++y) {
        const auto* row = reinterpret_cast<const unsigned int*>(
            buffer.memory + static_cast<unsigned long>(y) * buffer.bytesPerRow);
        for (int x = 0; x < buffer.memSize.x; ++x) pixels.push_back(row[x] & 0xFFFFFF);
    }
    return pixels;
}

/// The picture as letters, for small ones: a dot for 0, else the letter that `names` gives the colour.
inline std::vector<std::string> drawn(const GiFrameBuffer& buffer)
{
    std::vector<std::string> rows;
    const std::vector<unsigned int> pixels = pictureOf(buffer);
    for (int y = 0; y < buffer.memSize.y; ++y) {
        std::string row;
        for (int x = 0; x < buffer.memSize.x; ++x) {
            const unsigned int c = pixels[static_cast<std::size_t>(y * buffer.memSize.x + x)];
            row += c == 0 ? '.' : c == 0xFF0000 ? 'r' : c == 0xFF00 ? 'g' : c == 0xFF ? 'b' : '#';
        }
        rows.push_back(row);
    }
    return rows;
}

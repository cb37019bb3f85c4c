#pragma once

#include "core/GiLabelSlice.h"
#include "display/GiShape.h"

class Gi;
class GiSelection2D;
class HxParamBundle;

/// The label slice that a viewer shows: a strided view of the label volume, never a copy. The slice
/// forms of the transfer between selection and labels run on it.
class GiLabelImage : public GiShape
{
public:
    /// Resets the editor's tables of 2D draw styles and 3D visibility: all materials but the
    /// background are outlined, none is shown in 3D.
    /// locked  the editor's 256 locks; read at each transfer, so it must outlive the image
    GiLabelImage(int* locked, Gi* owner);

    /// Draws outlines and fill patterns of the labels in the box, then of the selection.
    void render(GiFrameBuffer* frameBuffer, const McBox2i& box) override;
    /// The key d: the next draw style for all shown materials, or, with shift or alt, for the one under the
    /// pointer.
    int handleEvent(GiFrameBuffer* frameBuffer, McEvent* event) override;
    McBox2i getBoundingBox() override;

    /// First label of the slice and the byte steps to the next column and row; null empties.
    void setMemory(unsigned char* memory, int xStride, unsigned long yStride);
    /// The same place in the lattice's weights; null without weights.
    void setProb(unsigned char* memory) { view.prob = memory; }
    void setProb2(unsigned char* memory) { view.prob2 = memory; }
    /// Nothing if the size is the same; else the memory is forgotten until it is set again.
    void resize(int width, int height);

    /// Zeroes width x height bytes from the memory on and writes 255 into the weights. For a slice
    /// with memory of its own; in a view of the volume the bytes are not those of the slice.
    void clear();

    static void setColor(Gi* gi, int index, int r, int g, int b);
    /// Fills all 256 colours of the editor: a material's own colour, else the default of its name,
    /// green beyond the bundle.
    static void setColor(Gi* gi, HxParamBundle& materials);

    /// Selected pixels get the label, unless theirs is locked.
    void addSelection(GiSelection2D* selection, int tissue);
    /// The pieces of the material that the selection touches go to their neighbours, then the
    /// selection is added.
    void replaceBySelection(GiSelection2D* selection, int tissue);
    /// Selected pixels of the material go to the neighbouring material.
    void subtractSelection(GiSelection2D& selection, int tissue);

private:
    void cycleAllStyles();
    void cycleStyleAt(const GiFrameBuffer& frameBuffer, int x, int y);

    Gi* gi;
    GiLabelSlice view;
    int positionX = 0, positionY = 0;
};

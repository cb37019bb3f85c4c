#pragma once

#include "display/GiFrameBuffer.h"

/// A frame buffer that keeps its picture in memory and shows it nowhere: scripts and tests read it. Its
/// window has a size like that of a widget; the memory image fills it as far as the slice does.
class GiMemoryFrameBuffer : public GiFrameBuffer
{
public:
    static constexpr int kDefaultSide = 512;

    GiMemoryFrameBuffer();

    void resize(const McVec2i& size, const int* columns, const int* rows) override;
    /// Limited so that the window stays within the slice; draws.
    void setOffset(const McVec2i& p) override;
    McVec2i windowSize() const override { return windowSides; }
    /// Both sides at least 1; draws.
    /// throws  McMemoryException; the window is as large as before then
    void setWindowSize(const McVec2i& size);

private:
    void fitMemory();
    void fitWindow();

    McVec2i windowSides{kDefaultSide, kDefaultSide};
};

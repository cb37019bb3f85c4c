#pragma once

#include "display/GiMemoryFrameBuffer.h"
#include "display/GiViewer.h"

/// A slice viewer without a window: what it shows is drawn into memory.
class GiMemoryViewer : public GiViewer
{
public:
    GiMemoryViewer(const char* title, Gi* owner) : GiViewer(title, owner)
    {
        setFrameBuffer(&buffer);
        createShapes();
    }

private:
    GiMemoryFrameBuffer buffer;
};

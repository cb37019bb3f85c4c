#pragma once

#include "display/GiShape.h"
#include "mc/McMemoryException.h"

#include <utility>

/// Has no memory for its next picture.
class FailingShape : public GiShape
{
public:
    void render(GiFrameBuffer*, const McBox2i&) override
    {
        if (std::exchange(fails, false)) throw McMemoryException(4711);
    }
    bool fails = false;
};

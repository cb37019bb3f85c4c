#pragma once

#include "hx/HxWorkArea.h"

/// Brackets a long operation with the work area's busy state, on every way out.
class GiBusy
{
public:
    explicit GiBusy(const char* text = nullptr) { HxWorkArea::getTheWorkArea()->busyOn(text); }
    ~GiBusy() { HxWorkArea::getTheWorkArea()->busyOff(); }
    GiBusy(const GiBusy&) = delete;
    GiBusy& operator=(const GiBusy&) = delete;
};

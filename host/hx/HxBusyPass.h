#pragma once

#include "hx/HxWorkArea.h"

/// A long operation, busy and open to interruption as long as it lives.
class HxBusyPass
{
public:
    /// A null text means a mere wait cursor.
    explicit HxBusyPass(const char* text = nullptr) { HxWorkArea::getTheWorkArea()->busyOn(text); }
    ~HxBusyPass() { HxWorkArea::getTheWorkArea()->busyOff(); }
    HxBusyPass(const HxBusyPass&) = delete;
    HxBusyPass& operator=(const HxBusyPass&) = delete;

    bool interrupted() const { return HxWorkArea::getTheWorkArea()->interrupted(); }
};

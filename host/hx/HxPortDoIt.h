#pragma once

#include "hx/HxPortButtonList.h"

/// The one button "DoIt" that starts a module's work.
class HxPortDoIt : public HxPortButtonList
{
    Q_OBJECT

public:
    explicit HxPortDoIt(HxObject* owner, const char* name = "action");

    /// Pressed since the owner last computed.
    bool wasHit() const { return isNew() && getIndex() == 0; }
};

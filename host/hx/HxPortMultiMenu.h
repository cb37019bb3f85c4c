#pragma once

#include "hx/HxPortChoice.h"

/// A menu of texts, one chosen.
class HxPortMultiMenu : public HxPortChoice
{
    Q_OBJECT

public:
    HxPortMultiMenu(HxObject* owner, const char* name, int numEntries = 0)
        : HxPortChoice(owner, name, numEntries)
    {
    }
};

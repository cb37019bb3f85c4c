#pragma once

#include "hx/HxPortChoice.h"

/// A row of radio buttons, one pressed.
class HxPortRadioBox : public HxPortChoice
{
    Q_OBJECT

public:
    HxPortRadioBox(HxObject* owner, const char* name, int numButtons = 0)
        : HxPortChoice(owner, name, numButtons)
    {
    }
};

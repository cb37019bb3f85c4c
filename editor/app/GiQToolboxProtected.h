#pragma once

#include "app/GiQToolbox.h"

/// The toolbox as the controller makes it.
class GiQToolboxProtected : public GiQToolbox
{
    Q_OBJECT

public:
    using GiQToolbox::GiQToolbox;
};

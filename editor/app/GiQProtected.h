#pragma once

#include "app/GiQ.h"

/// The controller as editors make it.
class GiQProtected : public GiQ
{
    Q_OBJECT

public:
    using GiQ::GiQ;
};

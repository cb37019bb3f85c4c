#pragma once

#include "mc/McHandable.h"

class Gi;

/// A named operation on the selection or the labels of one editor.
class GiFilter : public McHandable
{
public:
    explicit GiFilter(Gi* owner) : gi(owner) {}

    const char* name = "";

protected:
    Gi* gi; // never null
};

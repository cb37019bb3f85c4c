#pragma once

#include "mc/McHistogram.h"
#include "mc/McInterface.h"
#include "mc/McTypeId.h"

/// Offered by data objects that can count their values; all scalar fields do.
class HxHistogramInterface : public McInterface
{
public:
    static McTypeId getClassTypeId();

    /// Equal bins from the data minimum to the maximum; whole numbers of fewer values than bins get
    /// one bin per value. NaN and infinities are not counted. Without data: 0 bins, range 0 to 0.
    virtual McHistogram getHistogram(int numBins) = 0;
};

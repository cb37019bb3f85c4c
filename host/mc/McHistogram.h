#pragma once

#include "mc/McDArray.h"
#include "mc/McTypedPointer.h"

/// Counts of the values of an array in bins of equal width from the smallest to the largest value.
class McHistogram
{
public:
    /// Empty: no bins, range 0 to 0.
    McHistogram() = default;

    /// Counts all finite values of an array.
    ///
    /// Whole numbers that span fewer than `bins` values get one bin per value, a constant array gets one bin.
    /// Without a finite value, with bins below 1 or with an unknown element code the histogram is empty.
    /// throws  McMemoryException
    McHistogram(const McTypedPointer& data, unsigned long count, int bins);

    /// Range of the counted values.
    float getMin() const { return float(low); }
    float getMax() const { return float(high); }
    int numBins() const { return counts.size(); }
    /// Number of values in a bin; bin i of n covers the i-th n-th of the range, the last one with its end.
    unsigned long count(int bin) const { return counts[bin]; }

private:
    double low = 0;
    double high = 0;
    McDArray<unsigned long> counts;
};

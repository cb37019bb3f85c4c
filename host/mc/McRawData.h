#pragma once

/// Helpers on plain arrays of elements.
class McRawData
{
public:
    /// out[i] = (in[i] + a) * b, limited to 0..255 and cut to a whole number. The arrays may be the same.
    static void mapLinear(unsigned char* out, const unsigned char* in, unsigned long count, double a,
                          double b);

    /// Smallest and largest finite value of an array.
    ///
    /// hostCode  element code of McElementType.h
    /// returns false, with 0 and 0, for an unknown code or if there is no finite value
    static bool getRange(const void* data, unsigned long count, double& min, double& max, int hostCode);

    static void memset(float* data, unsigned long count, float value);
};

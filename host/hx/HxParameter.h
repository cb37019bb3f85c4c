#pragma once

#include "hx/HxParamBase.h"

#include <string>
#include <variant>
#include <vector>

/// A value of a parameter tree: n ints, n floats, n doubles, or a string.
class HxParameter : public HxParamBase
{
public:
    /// What primType() reports: host element codes for numbers, and one beyond them for text.
    enum Code
    {
        kInt = 2,
        kFloat = 3,
        kDouble = 4,
        kString = 10
    };

    /// An empty string. The name is cleaned; reading it back with getName() gives the legal name.
    explicit HxParameter(const char* name);
    HxParameter(const char* name, int number);
    HxParameter(const char* name, int count, const int* values);
    HxParameter(const char* name, int count, const float* values);
    HxParameter(const char* name, int count, const double* values);
    HxParameter(const char* name, const char* text);
    HxParameter(const HxParameter&) = default;

    /// Type code, see Code.
    int primType() const;

    /// Number of elements; 1 for a string.
    int dim() const;

    /// Element i converted to the asked type; a double beyond the range of int is limited to it.
    /// 0 for a string and outside the array.
    int getInt(int i = 0) const;
    double getReal(int i = 0) const;

    /// The text of a string; null for numbers. Valid until the value changes.
    const char* getString() const;

    void setInts(int count, const int* values);
    void setFloats(int count, const float* values);
    void setDoubles(int count, const double* values);
    void setString(const char* text);

    /// The value as a script prints and reads it: the string itself, or the numbers separated by
    /// blanks in their shortest exact form.
    McString text() const;

    /// Reads a value from that form. A number keeps its code, so every word must be a number that
    /// fits it; a string takes any text. False: the text does not fit and nothing is changed.
    bool setText(const char* text);

    /// Reads a value whose code the text decides: all whole numbers make ints, other numbers floats
    /// or, where a float would lose digits, doubles, all else (an empty text too) a string.
    void setTextOfAnyCode(const char* text);

    HxParamBase* clone() const override;
    HxParameter* asParameter() override { return this; }

private:
    std::variant<std::string, std::vector<int>, std::vector<float>, std::vector<double>> value;
};

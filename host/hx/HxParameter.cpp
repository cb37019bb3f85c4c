#include "hx/HxParameter.h"

#include "hx/HxNumberText.h"

#include <algorithm>
#include <climits>

namespace {

int limitedInt(double v)
{
    // Not-a-number becomes 0: the cast of it is not defined.
    if (!(v == v)) return 0;
    return static_cast<int>(std::clamp(v, static_cast<double>(INT_MIN), static_cast<double>(INT_MAX)));
}

template <class T>
std::vector<T> copyOf(int count, const T* values)
{
    return std::vector<T>(values, values + std::max(count, 0));
}

template <class T>
std::string joined(const std::vector<T>& numbers)
{
    std::string text;
    for (const T number : numbers) {
        if (!text.empty()) text += ' ';
        text += hxNumberText(number);
    }
    return text;
}

/// All words of the text as numbers of type T; false, and `out` untouched, if one is not.
template <class T>
bool readAll(const char* text, std::vector<T>& out)
{
    std::vector<T> numbers;
    for (const std::string& word : hxWords(text)) {
        T number;
        if (!hxReadNumber(word, number)) return false;
        numbers.push_back(number);
    }
    if (numbers.empty()) return false;
    out = std::move(numbers);
    return true;
}

/// The numbers in single precision; false if one of them would be written with other digits then.
bool narrowed(const std::vector<double>& numbers, std::vector<float>& out)
{
    std::vector<float> narrow;
    for (const double number : numbers) {
        float single;
        double back;
        if (!hxReadNumber(hxNumberText(number), single) || !hxReadNumber(hxNumberText(single), back) ||
            back != number)
            return false;
        narrow.push_back(single);
    }
    out = std::move(narrow);
    return true;
}

} // namespace

HxParameter::HxParameter(const char* name) : HxParamBase(name) {}

HxParameter::HxParameter(const char* name, int number) : HxParameter(name, 1, &number) {}

HxParameter::HxParameter(const char* name, int count, const int* values)
    : HxParamBase(name), value(copyOf(count, values))
{
}

HxParameter::HxParameter(const char* name, int count, const float* values)
    : HxParamBase(name), value(copyOf(count, values))
{
}

HxParameter::HxParameter(const char* name, int count, const double* values)
    : HxParamBase(name), value(copyOf(count, values))
{
}

HxParameter::HxParameter(const char* name, const char* text)
    : HxParamBase(name), value(std::string(text ? text : ""))
{
}

int HxParameter::primType() const
{
    constexpr int kCodes[] = {kString, kInt, kFloat, kDouble};
    return kCodes[value.index()];
}

int HxParameter::dim() const
{
    if (std::holds_alternative<std::string>(value)) return 1;
    return std::visit([](const auto& content) { return static_cast<int>(content.size()); }, value);
}

int HxParameter::getInt(int i) const
{
    if (i < 0 || i >= dim()) return 0;
    if (const auto* ints = std::get_if<std::vector<int>>(&value)) return (*ints)[i];
    return limitedInt(getReal(i));
}

double HxParameter::getReal(int i) const
{
    if (i < 0 || i >= dim()) return 0;
    if (const auto* ints = std::get_if<std::vector<int>>(&value)) return (*ints)[i];
    if (const auto* floats = std::get_if<std::vector<float>>(&value)) return (*floats)[i];
    if (const auto* doubles = std::get_if<std::vector<double>>(&value)) return (*doubles)[i];
    return 0;
}

const char* HxParameter::getString() const
{
    const auto* text = std::get_if<std::string>(&value);
    return text ? text->c_str() : nullptr;
}

void HxParameter::setInts(int count, const int* values)
{
    value = copyOf(count, values);
}

void HxParameter::setFloats(int count, const float* values)
{
    value = copyOf(count, values);
}

void HxParameter::setDoubles(int count, const double* values)
{
    value = copyOf(count, values);
}

void HxParameter::setString(const char* text)
{
    value = std::string(text ? text : "");
}

McString HxParameter::text() const
{
    switch (primType()) {
    case kInt:
        return joined(std::get<std::vector<int>>(value));
    case kFloat:
        return joined(std::get<std::vector<float>>(value));
    case kDouble:
        return joined(std::get<std::vector<double>>(value));
    default:
        return std::get<std::string>(value);
    }
}

bool HxParameter::setText(const char* newText)
{
    switch (primType()) {
    case kInt:
        return readAll(newText, std::get<std::vector<int>>(value));
    case kFloat:
        return readAll(newText, std::get<std::vector<float>>(value));
    case kDouble:
        return readAll(newText, std::get<std::vector<double>>(value));
    default:
        setString(newText);
        return true;
    }
}

void HxParameter::setTextOfAnyCode(const char* newText)
{
    if (std::vector<int> ints; readAll(newText, ints))
        value = std::move(ints);
    else if (std::vector<double> doubles; !readAll(newText, doubles))
        setString(newText);
    else if (std::vector<float> floats; narrowed(doubles, floats))
        value = std::move(floats);
    else
        value = std::move(doubles);
}

HxParamBase* HxParameter::clone() const
{
    return new HxParameter(*this);
}

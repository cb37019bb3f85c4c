#include "hx/HxFormat.h"

#include <cstdio>

std::string hxFormat(const char* format, va_list arguments)
{
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) return format; // an encoding error: the bare format says more than nothing

    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

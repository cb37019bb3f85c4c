#include "mc/McString.h"

#include <cstdarg>
#include <cstdio>

McString McString::printf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);

    McString result;
    if (length > 0) {
        result.text.resize(length);
        std::vsnprintf(result.text.data(), result.text.size() + 1, format, again);
    }
    va_end(again);
    return result;
}

#pragma once

#include <cstdarg>
#include <string>

/// The text that vprintf would print, of any length. `arguments` is used up.
std::string hxFormat(const char* format, va_list arguments);

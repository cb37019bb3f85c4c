#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Numbers in scripts and files: always with a point, whatever language the desktop speaks, and
/// in the shortest form that reads back as the same number.

std::string hxNumberText(int value);
std::string hxNumberText(long value);
std::string hxNumberText(float value);
std::string hxNumberText(double value);

/// Reads a whole word; false, and `out` untouched, if it is no number or does not fit the type.
/// Infinities and not-a-number are words, not numbers.
bool hxReadNumber(std::string_view word, int& out);
bool hxReadNumber(std::string_view word, long& out);
bool hxReadNumber(std::string_view word, float& out);
bool hxReadNumber(std::string_view word, double& out);

/// The words between blanks, tabs and line ends. Null counts as empty.
std::vector<std::string> hxWords(const char* text);

#pragma once

#include <charconv>
#include <string>

/// The shortest text that gives back the number exactly.
template <class T>
std::string hxNumberText(T v)
{
    char text[40];
    return std::string(text, std::to_chars(text, text + sizeof text, v).ptr);
}

/// Reads a text that is a number from end to end; false, with `v` undefined, for any other.
template <class T>
bool hxParseNumber(const std::string& text, T& v)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), v);
    return error == std::errc() && end == text.data() + text.size();
}

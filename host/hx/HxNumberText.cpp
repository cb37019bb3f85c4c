#include "hx/HxNumberText.h"

#include <charconv>
#include <cmath>
#include <type_traits>

namespace {

template <class T>
std::string numberText(T value)
{
    char buffer[64];
    const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, end.ptr);
}

template <class T>
bool readNumber(std::string_view word, T& out)
{
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    T number;
    const char* last = word.data() + word.size();
    const std::from_chars_result end = std::from_chars(word.data(), last, number);
    if (end.ec != std::errc() || end.ptr != last) return false;
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(number)) return false;
    out = number;
    return true;
}

} // namespace

std::string hxNumberText(int value)
{
    return numberText(value);
}

std::string hxNumberText(long value)
{
    return numberText(value);
}

std::string hxNumberText(float value)
{
    return numberText(value);
}

std::string hxNumberText(double value)
{
    return numberText(value);
}

bool hxReadNumber(std::string_view word, int& out)
{
    return readNumber(word, out);
}

bool hxReadNumber(std::string_view word, long& out)
{
    return readNumber(word, out);
}

bool hxReadNumber(std::string_view word, float& out)
{
    return readNumber(word, out);
}

bool hxReadNumber(std::string_view word, double& out)
{
    return readNumber(word, out);
}

std::vector<std::string> hxWords(const char* text)
{
    const std::string_view all(text ? text : "");
    constexpr std::string_view kBlanks = " \t\r\n\f\v";
    std::vector<std::string> words;
    for (std::size_t at = all.find_first_not_of(kBlanks); at != all.npos;) {
        const std::size_t end = std::min(all.find_first_of(kBlanks, at), all.size());
        words.emplace_back(all.substr(at, end - at));
        at = all.find_first_not_of(kBlanks, end);
    }
    return words;
}

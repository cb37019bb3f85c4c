#include "io/HxNaturalOrder.h"

#include <cctype>

namespace {

bool isDigit(const std::string& text, std::size_t i)
{
    return i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]));
}

// The digits from `at` on without leading zeros; moves `at` behind them.
std::string takeNumber(const std::string& text, std::size_t& at)
{
    while (isDigit(text, at + 1) && text[at] == '0') ++at;
    const std::size_t first = at;
    while (isDigit(text, at)) ++at;
    return text.substr(first, at - first);
}

} // namespace

bool hxNaturalLess(const std::string& a, const std::string& b)
{
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a, i) && isDigit(b, j)) {
            const std::string m = takeNumber(a, i);
            const std::string n = takeNumber(b, j);
            if (m.size() != n.size()) return m.size() < n.size();
            if (m != n) return m < n;
        } else if (a[i] != b[j]) {
            return a[i] < b[j];
        } else {
            ++i;
            ++j;
        }
    }
    if (i < a.size() || j < b.size()) return j < b.size();
    return a < b; // equal but for leading zeros
}

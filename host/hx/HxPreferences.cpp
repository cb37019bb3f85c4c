#include "hx/HxPreferences.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <sstream>
#include <thread>

namespace {

/// One field as scripts and files see it.
struct Field
{
    const char* name;
    const char* takes; // completes "takes ..." in the complaint about a bad value
    std::function<std::string(const HxPreferences&)> get;
    std::function<bool(HxPreferences&, const std::string&)> set; // false, and no change, for a bad value
};

bool parseInt(const std::string& text, int& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, status] = std::from_chars(text.data(), end, value);
    return status == std::errc() && stop == end;
}

/// True if the text holds one number per letter of `kinds`: d a whole one, g any.
bool isNumberList(const std::string& text, const std::string& kinds)
{
    std::istringstream words(text);
    std::string word;
    std::size_t count = 0;
    while (words >> word) {
        if (count == kinds.size()) return false;
        const char* end = word.data() + word.size();
        double real = 0;
        int whole = 0;
        const auto result = kinds[count] == 'd' ? std::from_chars(word.data(), end, whole)
                                                : std::from_chars(word.data(), end, real);
        if (result.ec != std::errc() || result.ptr != end || !std::isfinite(real)) return false;
        ++count;
    }
    return count == kinds.size();
}

Field intField(const char* name, const char* takes, int HxPreferences::*member, int low, int high)
{
    return {name, takes, [=](const HxPreferences& p) { return std::to_string(p.*member); },
            [=](HxPreferences& p, const std::string& text) {
                int value = 0;
                if (!parseInt(text, value) || value < low || value > high) return false;
                p.*member = value;
                return true;
            }};
}

Field boolField(const char* name, bool HxPreferences::*member)
{
    return {name, "0 or 1", [=](const HxPreferences& p) { return p.*member ? "1" : "0"; },
            [=](HxPreferences& p, const std::string& text) {
                const bool on = text == "1" || text == "true" || text == "on" || text == "yes";
                const bool off = text == "0" || text == "false" || text == "off" || text == "no";
                if (on == off) return false;
                p.*member = on;
                return true;
            }};
}

Field choiceField(const char* name, const char* takes, McString HxPreferences::*member,
                  std::vector<std::string> choices)
{
    return {name, takes, [=](const HxPreferences& p) { return (p.*member).str(); },
            [=](HxPreferences& p, const std::string& text) {
                if (std::find(choices.begin(), choices.end(), text) == choices.end()) return false;
                p.*member = McString(text);
                return true;
            }};
}

/// kinds: a letter per number, d for a whole one and g for any; the empty text is always good.
Field numbersField(const char* name, const char* takes, McString HxPreferences::*member, const char* kinds)
{
    return {name, takes, [=](const HxPreferences& p) { return (p.*member).str(); },
            [=](HxPreferences& p, const std::string& text) {
                if (!text.empty() && !isNumberList(text, kinds)) return false;
                p.*member = McString(text);
                return true;
            }};
}

const std::vector<Field>& fields()
{
    using P = HxPreferences;
    static const std::vector<Field> all = {
        intField("selectionDrawStyle", "a whole number from 0 to 4", &P::selectionDrawStyle, 0, 4),
        intField("selectionAlpha", "a whole number from 0 to 255", &P::selectionAlpha, 0, 255),
        choiceField("selectionStyle3D", "Points1, Points2 or Solid", &P::selectionStyle3D,
                    {"Points1", "Points2", "Solid"}),
        boolField("anatomicalNames", &P::anatomicalNames),
        intField("numThreads", "a whole number from 0 on", &P::numThreads, 0, INT_MAX),
        numbersField("giOrientation", "4 whole numbers or nothing", &P::giOrientation, "dddd"),
        numbersField("giMagicWand", "2 numbers, 4 whole numbers and a number, or nothing", &P::giMagicWand,
                     "ggddddg"),
    };
    return all;
}

const Field* findField(const char* name, McString& error)
{
    std::string names;
    for (const Field& field : fields()) {
        if (std::strcmp(field.name, name) == 0) return &field;
        names += std::string(names.empty() ? "" : ", ") + field.name;
    }
    error = McString("No preference \"") + name + "\"; there are " + names.c_str() + ".";
    return nullptr;
}

} // namespace

int HxPreferences::defaultNumThreads()
{
    constexpr unsigned int kMostUseful = 8; // beyond that the memory is the limit
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, kMostUseful));
}

std::vector<const char*> HxPreferences::fieldNames()
{
    std::vector<const char*> names;
    for (const Field& field : fields()) names.push_back(field.name);
    return names;
}

bool HxPreferences::get(const char* name, McString& value, McString& error) const
{
    const Field* field = findField(name, error);
    if (field) value = McString(field->get(*this));
    return field != nullptr;
}

bool HxPreferences::set(const char* name, const char* value, McString& error)
{
    const Field* field = findField(name, error);
    if (!field) return false;
    if (field->set(*this, value)) return true;
    error = McString("Preference \"") + name + "\" takes " + field->takes + ", not \"" + value + "\".";
    return false;
}

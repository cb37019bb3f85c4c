#include "hx/HxClassRegistry.h"

#include "hx/HxBase.h"

#include <map>

namespace {

struct Entry
{
    std::string base;
    HxClassRegistry::Creator create;
};

std::map<std::string, Entry>& classes()
{
    static std::map<std::string, Entry> all;
    return all;
}

} // namespace

void HxClassRegistry::add(const char* name, const char* base, Creator create)
{
    classes()[name] = {base ? base : "", std::move(create)};
}

bool HxClassRegistry::contains(const char* name)
{
    return classes().contains(name);
}

bool HxClassRegistry::isDerived(const char* name, const char* base)
{
    std::string current = name;
    // A chain is never longer than the list of classes, even if two of them name each other as base.
    for (std::size_t step = 0; step <= classes().size(); ++step) {
        if (current == base) return true;
        const auto found = classes().find(current);
        if (found == classes().end()) return false;
        current = found->second.base;
    }
    return false;
}

HxBase* HxClassRegistry::create(const char* name)
{
    const auto found = classes().find(name);
    if (found == classes().end() || !found->second.create) return nullptr;
    const Creator make = found->second.create;
    return make();
}

std::vector<std::string> HxClassRegistry::creatable()
{
    std::vector<std::string> names;
    for (const auto& [name, entry] : classes())
        if (entry.create) names.push_back(name);
    return names;
}

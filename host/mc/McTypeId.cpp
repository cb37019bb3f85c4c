#include "mc/McTypeId.h"

#include <cstdlib>
#include <cxxabi.h>
#include <map>
#include <string>
#include <typeindex>

struct McTypeId::Record
{
    std::string name;
    bool declared = false;
    Record* base = nullptr;
};

namespace {

std::string nameInCode(const std::type_info& type)
{
    int status = 0;
    char* name = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::string result = name ? name : type.name();
    std::free(name);
    return result;
}

// Made on first use: classes declare themselves while libraries are being loaded.
template <class Record>
std::map<std::type_index, Record>& table()
{
    static std::map<std::type_index, Record> records;
    return records;
}

} // namespace

McTypeId::Record* McTypeId::find(const std::type_info& type)
{
    auto [place, isNew] = table<Record>().try_emplace(type);
    if (isNew) place->second.name = nameInCode(type);
    return &place->second;
}

McTypeId McTypeId::declare(McTypeId id, const char* name, McTypeId base)
{
    if (!id.record->declared) {
        id.record->declared = true;
        id.record->name = name;
        id.record->base = base.record;
    }
    return id;
}

McTypeId McTypeId::fromName(const char* name)
{
    for (auto& [type, record] : table<Record>())
        if (name && record.name == name) return McTypeId(&record);
    return {};
}

const char* McTypeId::name() const
{
    return record ? record->name.c_str() : "";
}

McTypeId McTypeId::base() const
{
    return McTypeId(record ? record->base : nullptr);
}

bool McTypeId::isDerivedFrom(McTypeId ancestor) const
{
    for (const Record* r = record; r; r = r->base)
        if (r == ancestor.record) return true;
    return false;
}

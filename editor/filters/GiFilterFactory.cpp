#include "filters/GiFilterFactory.h"

#include "hx/HxDSO.h"
#include "hx/HxInterpreter.h"
#include "hx/HxMessage.h"

#include <cstdlib>
#include <cstring>
#include <exception>

namespace {

constexpr const char* kNames = "kelvane::pluginFilterName";
constexpr const char* kLibraries = "kelvane::pluginLibs";
constexpr const char* kEntries = "kelvane::pluginClasses";

using EntryFunction = void (*)(Gi*);

int registrySize()
{
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    if (!interpreter->getVar(kNames)) return 0;
    const char* length = interpreter->evalf("llength $%s", kNames);
    return length ? static_cast<int>(std::strtol(length, nullptr, 10)) : 0;
}

/// Entry `i` of a list; empty beyond its end, null if there is no such list.
const char* listEntry(const char* list, int i)
{
    return HxInterpreter::getTheInterpreter()->evalf("lindex $%s %d", list, i);
}

/// The place of a name; -1 if it is not registered.
int placeOf(const char* name)
{
    const int n = registrySize();
    for (int i = 0; i < n; ++i) {
        const char* entry = listEntry(kNames, i);
        if (entry && std::strcmp(entry, name) == 0) return i;
    }
    return -1;
}

/// Code of others must not take the program, and the labels in it, along. Filters that were appended before
/// the exception are whole and stay.
bool callEntry(EntryFunction entry, const char* name, Gi* gi)
{
    try {
        entry(gi);
        return true;
    } catch (const std::exception& e) {
        HxMessage::getTheMsg()->printf("Plug-in filter \"%s\" cannot be used: %s", name, e.what());
    } catch (...) {
        HxMessage::getTheMsg()->printf("Plug-in filter \"%s\" cannot be used: it failed to start.", name);
    }
    return false;
}

} // namespace

McDArray<McString> GiFilterFactory::getNames()
{
    McDArray<McString> names;
    const int n = registrySize();
    for (int i = 0; i < n; ++i)
        if (const char* entry = listEntry(kNames, i)) names.append(entry);
    return names;
}

int GiFilterFactory::createFilter(const char* name, Gi* gi)
{
    const int i = placeOf(name);
    if (i < 0) return 0;
    // Lists may differ in length: what is not there has no name, and is not found.
    const char* stem = listEntry(kLibraries, i);
    const McString file = McString::printf("lib%s.so", stem ? stem : "");
    HxDSO library;
    if (library.open(file) != 0) {
        HxMessage::getTheMsg()->printf("Internal error: could not open %s", static_cast<const char*>(file));
        HxMessage::getTheMsg()->printf("%s", library.errorText().c_str());
        return 0;
    }
    const char* symbol = listEntry(kEntries, i);
    void* entry = symbol ? library.getSymbol(symbol) : nullptr;
    if (!entry) return 0;
    return callEntry(reinterpret_cast<EntryFunction>(entry), name, gi) ? 1 : 0;
}

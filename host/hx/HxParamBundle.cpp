#include "hx/HxParamBundle.h"

#include "hx/HxNumberText.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace {

constexpr const char* kMaterials = "Materials";
constexpr const char* kColor = "Color";

template <class T>
bool readColor(const HxParameter& entry, T* rgb)
{
    T read[3];
    if (const char* text = entry.getString()) {
        const std::vector<std::string> words = hxWords(text);
        if (words.size() != 3) return false;
        for (int c = 0; c < 3; c++)
            if (!hxReadNumber(words[c], read[c])) return false;
    } else {
        if (entry.dim() < 3) return false;
        for (int c = 0; c < 3; c++) read[c] = static_cast<T>(entry.getReal(c));
    }
    if (!std::all_of(read, read + 3, [](T v) { return std::isfinite(v); })) return false;
    std::copy(read, read + 3, rgb);
    return true;
}

template <class Kind>
auto findIn(const std::vector<std::unique_ptr<Kind>>& list, const McString& name)
{
    return std::find_if(list.begin(), list.end(),
                        [&](const auto& entry) { return name == entry->getName(); });
}

template <class Kind>
std::unique_ptr<HxParamBase> releaseFrom(std::vector<std::unique_ptr<Kind>>& list, const HxParamBase* entry)
{
    const auto at = std::find_if(list.begin(), list.end(), [&](const auto& e) { return e.get() == entry; });
    if (at == list.end()) return nullptr;
    std::unique_ptr<HxParamBase> released = std::move(*at);
    list.erase(at);
    return released;
}

template <class Kind>
void insertInto(std::vector<std::unique_ptr<Kind>>& list, Kind* entry, int position)
{
    const int n = static_cast<int>(list.size());
    list.emplace(list.begin() + (position < 0 || position > n ? n : position), entry);
}

} // namespace

HxParamBundle::HxParamBundle(const char* name) : HxParamBase(name) {}

HxParamBundle::HxParamBundle(const HxParamBundle& other) : HxParamBase(other)
{
    copy(other);
}

HxParamBundle::~HxParamBundle() = default;

HxParamBundle* HxParamBundle::bundle(int i) const
{
    return i >= 0 && i < nBundles() ? bundles[i].get() : nullptr;
}

HxParamBundle* HxParamBundle::bundle(const char* name, int create)
{
    const auto at = findIn(bundles, cleanName(name));
    if (at != bundles.end()) return at->get();
    if (!create) return nullptr;

    auto* made = new HxParamBundle(name);
    if (HxParameter* inTheWay = parameter(name)) release(inTheWay);
    insert(made);
    return made;
}

const HxParamBundle* HxParamBundle::bundle(const char* name) const
{
    const auto at = findIn(bundles, cleanName(name));
    return at != bundles.end() ? at->get() : nullptr;
}

HxParamBundle* HxParamBundle::materials()
{
    return bundle(kMaterials, 1);
}

int HxParamBundle::index(const HxParamBase* wanted) const
{
    for (int i = 0; i < nBundles(); i++)
        if (bundles[i].get() == wanted) return i;
    return -1;
}

int HxParamBundle::index(const char* name) const
{
    return index(static_cast<const HxParamBase*>(bundle(name)));
}

bool HxParamBundle::relocate(const HxParamBase* moved, int to)
{
    return relocate(index(moved), to);
}

bool HxParamBundle::relocate(int from, int to)
{
    if (from < 0 || from >= nBundles()) return false;
    to = std::clamp(to, 0, nBundles() - 1);
    const auto first = bundles.begin();
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    return true;
}

HxParameter* HxParamBundle::parameter(int i) const
{
    return i >= 0 && i < nParameters() ? values[i].get() : nullptr;
}

HxParameter* HxParamBundle::parameter(const char* name) const
{
    const auto at = findIn(values, cleanName(name));
    return at != values.end() ? at->get() : nullptr;
}

HxParamBase* HxParamBundle::find(const char* name) const
{
    if (HxParameter* value = parameter(name)) return value;
    const auto at = findIn(bundles, cleanName(name));
    return at != bundles.end() ? at->get() : nullptr;
}

bool HxParamBundle::isTaken(const McString& name, const HxParamBase* except) const
{
    const auto has = [&](const auto& entry) { return entry.get() != except && name == entry->getName(); };
    return std::any_of(values.begin(), values.end(), has) || std::any_of(bundles.begin(), bundles.end(), has);
}

McString HxParamBundle::freeName(const McString& wanted, const HxParamBase* except) const
{
    McString name = wanted;
    for (int number = 2; isTaken(name, except); number++) name = wanted + McString(hxNumberText(number));
    return name;
}

bool HxParamBundle::isAncestorOrSelf(const HxParamBase* entry) const
{
    for (const HxParamBundle* up = this; up; up = up->parent())
        if (up == entry) return true;
    return false;
}

std::unique_ptr<HxParamBase> HxParamBundle::release(HxParamBase* entry)
{
    std::unique_ptr<HxParamBase> released = releaseFrom(values, entry);
    if (!released) released = releaseFrom(bundles, entry);
    if (released) released->parentBundle = nullptr;
    return released;
}

void HxParamBundle::insert(HxParamBase* entry, int position)
{
    assert(entry && !isAncestorOrSelf(entry));
    if (entry->parentBundle) {
        // The pointer owns the entry only for the moment: it goes on to the list below.
        entry->parentBundle->release(entry).release();
    }
    if (cleanName(getName()) == kMaterials)
        entry->entryName = freeName(entry->entryName, nullptr);
    else if (HxParamBase* old = find(entry->getName()))
        release(old);

    if (HxParameter* value = entry->asParameter())
        insertInto(values, value, position);
    else
        insertInto(bundles, entry->asBundle(), position);
    entry->parentBundle = this;
}

bool HxParamBundle::remove(HxParamBase* entry)
{
    if (!entry || entry->parentBundle != this || entry->testFlag(kFixed)) return false;
    release(entry);
    return true;
}

bool HxParamBundle::remove(const char* name)
{
    return remove(find(name));
}

void HxParamBundle::clear()
{
    values.clear();
    bundles.clear();
}

void HxParamBundle::copy(const HxParamBundle& other)
{
    if (&other == this) return;

    // The clones are complete before anything goes: the other bundle may lie inside this one.
    std::vector<std::unique_ptr<HxParameter>> newValues;
    std::vector<std::unique_ptr<HxParamBundle>> newBundles;
    for (const auto& value : other.values) newValues.emplace_back(new HxParameter(*value));
    for (const auto& bundle : other.bundles) newBundles.emplace_back(new HxParamBundle(*bundle));
    values.swap(newValues);
    bundles.swap(newBundles);
    for (const auto& value : values) value->parentBundle = this;
    for (const auto& bundle : bundles) bundle->parentBundle = this;
}

int HxParamBundle::findReal(const char* name, int count, float* out) const
{
    const HxParameter* entry = parameter(name);
    if (!entry || entry->getString() || entry->dim() < count) return 0;
    for (int i = 0; i < count; i++) out[i] = static_cast<float>(entry->getReal(i));
    return 1;
}

int HxParamBundle::findReal(const char* name, int count, double* out) const
{
    const HxParameter* entry = parameter(name);
    if (!entry || entry->getString() || entry->dim() < count) return 0;
    for (int i = 0; i < count; i++) out[i] = entry->getReal(i);
    return 1;
}

int HxParamBundle::findNum(const char* name, int& out) const
{
    return findNum(name, 1, &out);
}

int HxParamBundle::findNum(const char* name, int count, int* out) const
{
    const HxParameter* entry = parameter(name);
    if (!entry || entry->getString() || entry->dim() < count) return 0;
    for (int i = 0; i < count; i++) out[i] = entry->getInt(i);
    return 1;
}

int HxParamBundle::findString(const char* name, McString& out) const
{
    const char* text;
    if (!findString(name, text)) return 0;
    out = McString(text);
    return 1;
}

int HxParamBundle::findString(const char* name, const char*& out) const
{
    const HxParameter* entry = parameter(name);
    if (!entry || !entry->getString()) return 0;
    out = entry->getString();
    return 1;
}

int HxParamBundle::findColor(float* rgb) const
{
    const HxParameter* entry = parameter(kColor);
    return entry && readColor(*entry, rgb) ? 1 : 0;
}

HxParameter& HxParamBundle::valueToWrite(const char* name)
{
    if (HxParameter* entry = parameter(name)) return *entry;
    auto* entry = new HxParameter(name);
    if (HxParamBase* inTheWay = find(name)) release(inTheWay);
    insert(entry);
    return *entry;
}

void HxParamBundle::set(const char* name, int number)
{
    set(name, 1, &number);
}

void HxParamBundle::set(const char* name, float number)
{
    set(name, 1, &number);
}

void HxParamBundle::set(const char* name, double number)
{
    set(name, 1, &number);
}

void HxParamBundle::set(const char* name, int count, const int* numbers)
{
    valueToWrite(name).setInts(count, numbers);
}

void HxParamBundle::set(const char* name, int count, const float* numbers)
{
    valueToWrite(name).setFloats(count, numbers);
}

void HxParamBundle::set(const char* name, int count, const double* numbers)
{
    valueToWrite(name).setDoubles(count, numbers);
}

void HxParamBundle::set(const char* name, const char* text)
{
    valueToWrite(name).setString(text);
}

void HxParamBundle::setColor(const float* rgb)
{
    set(kColor, 3, rgb);
}

HxParamBase* HxParamBundle::clone() const
{
    return new HxParamBundle(*this);
}

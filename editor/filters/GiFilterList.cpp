// The filters of Gi: a list with fixed indices, by which scripts address them, and those of plug-ins. An
// entry whose filter is not part of this build is null and keeps its place.

#include "core/Gi.h"
#include "filters/GiFilter.h"
#include "filters/GiFilterFactory.h"

namespace {

constexpr int kNumFilters = 5; // smooth, fill bone, remove islands, snakes, remove skin

void addReferences(const McDArray<GiFilter*>& filters)
{
    for (GiFilter* filter : filters)
        if (filter) filter->ref();
}

/// The dialog goes first: it may still speak to its filter.
void dropFilters(McDArray<GiFilter*>& filters)
{
    for (GiFilter* filter : filters) {
        if (!filter) continue;
        filter->destroyWidget();
        filter->unref();
    }
    filters.clear();
}

} // namespace

void Gi::createFilters()
{
    for (int i = 0; i < kNumFilters; ++i) filters.append(nullptr);
    addReferences(filters);
    for (const McString& name : GiFilterFactory::getNames()) GiFilterFactory::createFilter(name, this);
    addReferences(pluginFilters);
}

void Gi::destroyFilters()
{
    dropFilters(filters);
    dropFilters(pluginFilters);
}

// The filters of Gi: a list with fixed indices, by which scripts address them. An entry whose filter
// is not part of this build is null and keeps its place.

#include "core/Gi.h"
#include "filters/GiFilter.h"

namespace {

constexpr int kNumFilters = 5; // smooth, fill bone, remove islands, snakes, remove skin

void dropFilters(McDArray<GiFilter*>& filters)
{
    for (int i = 0; i < filters.size(); ++i)
        if (filters[i]) filters[i]->unref();
    filters.clear();
}

} // namespace

void Gi::createFilters()
{
    for (int i = 0; i < kNumFilters; ++i) filters.append(nullptr);
}

void Gi::destroyFilters()
{
    dropFilters(filters);
    dropFilters(pluginFilters);
}

#include "hx/HxCompModule.h"

#include "hx/HxData.h"
#include "hx/HxObjectPool.h"
#include "hx/HxWorkArea.h"

#include <cassert>

HxCompModule::HxCompModule(McTypeId inputType) : portData(this, "data", inputType) {}

HxCompModule::~HxCompModule()
{
    releaseAllResults();
}

McTypeId HxCompModule::getClassTypeId()
{
    return hxClassType<HxCompModule, HxObject>("HxCompModule");
}

namespace {

/// Does a thing at the end of a block, however it is left.
template <class Action>
struct AtEnd
{
    Action action;
    ~AtEnd() { action(); }
};

} // namespace

void HxCompModule::run()
{
    const int busyDepth = HxWorkArea::getTheWorkArea()->busyDepth();
    const AtEnd closing{[&] {
        for (int i = 0; i < numPorts(); i++) port(i)->clearNew();
        HxWorkArea::getTheWorkArea()->restoreBusyDepth(busyDepth);
    }};
    update();
    compute();
}

void HxCompModule::fire()
{
    if (firing) return;
    // compute() can take its own module out of the pool. One that nobody counts stays uncounted: it would go
    // with this reference.
    const McHandle<HxCompModule> keep(refCount() > 0 ? this : nullptr);
    firing = true;
    const AtEnd resting{[this] { firing = false; }};
    run();
    // Results may be replaced while modules behind them run.
    const std::vector<McHandle<HxData>> made = results;
    for (const McHandle<HxData>& result : made)
        if (result) result->fire();
}

HxData* HxCompModule::getResult(int index) const
{
    return index >= 0 && index < static_cast<int>(results.size()) ? results[index].get() : nullptr;
}

void HxCompModule::setResult(int index, HxData* data, int)
{
    assert(index >= 0);
    if (index >= static_cast<int>(results.size())) results.resize(index + 1);

    const McHandle<HxData> former = results[index];
    if (former && former.get() != data) {
        releaseResult(index);
        HxObjectPool::getThePool()->removeObject(former);
    }
    if (!data) return;
    if (former.get() != data) {
        const McHandle<HxData> keep(data);
        data->masterConnection().disconnect();
        results[index] = keep;
        data->masterConnection().set(this, index);
    }
    HxObjectPool::getThePool()->addObject(data);
}

void HxCompModule::releaseResult(int index)
{
    const McHandle<HxData> released = results[index];
    if (!released) return;
    results[index] = nullptr;
    released->masterConnection().set(nullptr, -1);
}

void HxCompModule::releaseAllResults()
{
    for (int i = 0; i < static_cast<int>(results.size()); i++) releaseResult(i);
}

void HxCompModule::memberRemoved(HxObject* member)
{
    if (member == this) {
        releaseAllResults();
        return;
    }
    for (int i = 0; i < static_cast<int>(results.size()); i++)
        if (results[i].get() == member) releaseResult(i);
}

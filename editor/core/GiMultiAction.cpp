#include "core/GiMultiAction.h"

#include <algorithm>

GiMultiAction::GiMultiAction() = default;

GiMultiAction::~GiMultiAction()
{
    for (GiAction* action : actions) action->unref();
}

void GiMultiAction::append(GiAction* action)
{
    actions.append(action);
    action->ref();
}

// kept: the members run from first to last, also on undo. They are snapshots of different things,
// or of one state, taken together before the change.
void GiMultiAction::execute()
{
    for (GiAction* action : actions) action->execute();
}

long GiMultiAction::getMemSize()
{
    long sum = 0;
    for (GiAction* action : actions) sum += action->getMemSize();
    return sum;
}

void GiMultiAction::labelsRenumbered()
{
    for (GiAction* action : actions) action->labelsRenumbered();
}

bool GiMultiAction::hasOldNumbers() const
{
    return std::any_of(actions.begin(), actions.end(),
                       [](const GiAction* action) { return action->hasOldNumbers(); });
}

#include "core/GiMultiAction.h"

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

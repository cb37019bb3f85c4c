#pragma once

#include "core/GiAction.h"
#include "mc/McDArray.h"

/// Several actions that are undone as one, in the order of appending. Holds a reference on each.
class GiMultiAction : public GiAction
{
public:
    GiMultiAction();
    ~GiMultiAction() override;
    GiMultiAction(const GiMultiAction&) = delete;
    GiMultiAction& operator=(const GiMultiAction&) = delete;

    void append(GiAction* action);

    void execute() override;
    long getMemSize() override;
    void labelsRenumbered() override;
    bool hasOldNumbers() const override;

private:
    McDArray<GiAction*> actions;
};

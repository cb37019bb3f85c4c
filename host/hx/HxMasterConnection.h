#pragma once

#include "hx/HxPort.h"

class HxCompModule;

/// The link from a result to the module that made it.
///
/// HxCompModule::setResult makes it. disconnect() frees the result: it stays in the pool as an
/// object of its own, and the module's getResult gives null.
class HxMasterConnection : public HxPort
{
    Q_OBJECT

public:
    explicit HxMasterConnection(HxObject* owner);

    /// Null without.
    HxCompModule* module() const { return masterModule; }
    int resultIndex() const { return slot; }
    void disconnect();

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;

private:
    friend class HxCompModule;

    void set(HxCompModule* module, int resultIndex);

    HxCompModule* masterModule = nullptr;
    int slot = -1;
};

#pragma once

#include "hx/HxConnection.h"
#include "hx/HxObject.h"
#include "mc/McHandle.h"

#include <vector>

class HxData;

/// A compute module: ports, an input "data", and results that it puts into the pool.
class HxCompModule : public HxObject
{
    Q_OBJECT

public:
    /// inputType: what the connection "data" accepts; more with portData.addType().
    explicit HxCompModule(McTypeId inputType);
    ~HxCompModule() override;

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// The input, script name "data".
    HxConnection portData;

    /// Lets the ports follow the input.
    virtual void update() {}
    /// Does the work.
    virtual void compute() {}

    /// update(), compute(), then clears the is-new flags of all ports and closes progress phases
    /// that compute() left open, also when it throws. A module that is firing does not fire again.
    void fire() override;

    /// Null without.
    HxData* getResult(int index) const;
    /// Makes the object a result: adds it to the pool if it is new there, sets its master
    /// connection and keeps one reference. Another former result of this index leaves the pool.
    /// Null takes the former result away. The last argument is reserved, -1.
    void setResult(int index, HxData* data, int reserved);

protected:
    void memberRemoved(HxObject* member) override;

private:
    friend class HxMasterConnection;

    void run();
    void releaseResult(int index);
    void releaseAllResults();

    std::vector<McHandle<HxData>> results;
    bool firing = false;
};

#pragma once

#include "hx/HxPort.h"

#include <limits>

/// One integer in a text field. setValue and setRange limit the value to the range.
class HxPortIntTextN : public HxPort
{
    Q_OBJECT

public:
    HxPortIntTextN(HxObject* owner, const char* name);

    /// A maximum below the minimum counts as the minimum.
    void setRange(int min, int max);
    int getMin() const { return minimum; }
    int getMax() const { return maximum; }

    int getValue() const { return value; }
    void setValue(int newValue);

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;

private:
    int minimum = std::numeric_limits<int>::min();
    int maximum = std::numeric_limits<int>::max();
    int value = 0;
};

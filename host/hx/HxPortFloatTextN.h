#pragma once

#include "hx/HxPort.h"

#include <limits>

/// One real number in a text field. setValue and setRange limit the value to the range; NaN is
/// never taken.
class HxPortFloatTextN : public HxPort
{
    Q_OBJECT

public:
    HxPortFloatTextN(HxObject* owner, const char* name);

    /// A maximum below the minimum counts as the minimum.
    void setRange(float min, float max);
    float getMin() const { return minimum; }
    float getMax() const { return maximum; }

    float getValue() const { return value; }
    void setValue(float newValue);

    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    bool run(const HxScriptCall& call, int& code) override;

private:
    float minimum = std::numeric_limits<float>::lowest();
    float maximum = std::numeric_limits<float>::max();
    float value = 0;
};

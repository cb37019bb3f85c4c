#pragma once

#include "hx/HxData.h"

/// A field of values in space, with a value range that is computed when somebody asks.
class HxField3 : public HxData
{
    Q_OBJECT

public:
    HxField3();

    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Range of the values; NaN and infinities are ignored, 0 to 0 without a value. Recomputed when
    /// stale. The double form keeps large whole numbers exact.
    void getRange(float& min, float& max);
    void getRange(double& min, double& max);

    /// flag 1: the given range holds. flag 0: the range is stale and recomputed when asked for.
    /// Bumps the touch number, and with flag 0 marks the field as modified; costs nothing and does not emit
    /// dataObjectTouched.
    virtual void touchMinMax(float min, float max, int flag);

    /// A change of values or memory makes the range stale.
    void touch(unsigned int mask = kAllChanged) override;

protected:
    /// Range of all finite values; false without any.
    virtual bool computeRange(double& min, double& max) = 0;

private:
    bool rangeIsKnown = false;
    double minimum = 0;
    double maximum = 0;
};

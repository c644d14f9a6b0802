// On/off mapping: any positive normalized value is on.
#pragma once

#include "AAX_ITaperDelegate.h"

template <typename T>
class AAX_CBinaryTaperDelegate : public AAX_ITaperDelegate<T> {
public:
    AAX_CBinaryTaperDelegate* Clone() const override { return new AAX_CBinaryTaperDelegate(*this); }
    T GetMinimumValue() const override { return static_cast<T>(false); }
    T GetMaximumValue() const override { return static_cast<T>(true); }
    T ConstrainRealValue(T value) const override { return value; }
    T NormalizedToReal(double normalizedValue) const override { return static_cast<T>(normalizedValue > 0.0); }
    double RealToNormalized(T realValue) const override { return realValue ? 1.0 : 0.0; }
};

// Straight-line mapping between [minimum, maximum] and [0, 1]. A non-zero
// RealPrecision snaps real values to multiples of 1/RealPrecision.
#pragma once

#include <cmath>
#include <cstdint>

#include "AAX_ITaperDelegate.h"

template <typename T, int32_t RealPrecision = 1000>
class AAX_CLinearTaperDelegate : public AAX_ITaperDelegate<T> {
public:
    AAX_CLinearTaperDelegate(T minValue = 0, T maxValue = 1) : mMinValue(minValue), mMaxValue(maxValue) {}

    AAX_CLinearTaperDelegate* Clone() const override { return new AAX_CLinearTaperDelegate(*this); }
    T GetMinimumValue() const override { return mMinValue; }
    T GetMaximumValue() const override { return mMaxValue; }
    T ConstrainRealValue(T value) const override
    {
        if (RealPrecision != 0)
            value = static_cast<T>(std::round(static_cast<double>(value) * RealPrecision) / RealPrecision);
        if (value > mMaxValue) return mMaxValue;
        return value < mMinValue ? mMinValue : value;
    }
    T NormalizedToReal(double normalizedValue) const override
    {
        const double real = (static_cast<double>(mMaxValue) - static_cast<double>(mMinValue)) * normalizedValue +
                            static_cast<double>(mMinValue);
        return ConstrainRealValue(static_cast<T>(real));
    }
    double RealToNormalized(T realValue) const override
    {
        const double range = static_cast<double>(mMaxValue) - static_cast<double>(mMinValue);
        // An empty range has no position other than the start.
        if (range == 0.0) return 0.0;
        return (static_cast<double>(ConstrainRealValue(realValue)) - static_cast<double>(mMinValue)) / range;
    }

private:
    T mMinValue;
    T mMaxValue;
};

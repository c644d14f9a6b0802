// Taper delegates map between a parameter's real value and the normalized
// 0..1 value the host automates.
#pragma once

class AAX_ITaperDelegateBase {
public:
    virtual ~AAX_ITaperDelegateBase() = default;
};

template <typename T>
class AAX_ITaperDelegate : public AAX_ITaperDelegateBase {
public:
    virtual AAX_ITaperDelegate* Clone() const = 0;
    virtual T GetMaximumValue() const = 0;
    virtual T GetMinimumValue() const = 0;
    virtual T ConstrainRealValue(T value) const = 0;
    virtual T NormalizedToReal(double normalizedValue) const = 0;
    virtual double RealToNormalized(T realValue) const = 0;
};

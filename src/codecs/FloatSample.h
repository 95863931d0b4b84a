#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

/// A float with full scale at 1 as a sample, cut toward 0 and limited. Full
/// scale up, which no 32-bit sample can hold, turns into full scale down.
inline qint32 sampleFromFloat(float value)
{
    constexpr float fullScale = 2147483648.0f;
    const float scaled = std::clamp(value * fullScale, -fullScale, fullScale);
    return scaled == fullScale ? std::numeric_limits<qint32>::min() : static_cast<qint32>(scaled);
}

/// A float with full scale at 1 as the nearest value of so many bits, limited. One
/// that is no number is silence.
template<int bits>
qint32 valueFromFloat(float value)
{
    using Real = std::conditional_t<(bits < 20), float, double>;
    constexpr Real fullScale = 1 << (bits - 1);
    // Half as much again as where neighbours lie one apart: the sum has no room for
    // a fraction and is rounded, with no call for every sample.
    constexpr Real roundingPlace = Real{1.5} * (quint64{1} << (std::numeric_limits<Real>::digits - 1));
    const Real known = std::isnan(value) ? Real{0} : Real{value};
    const Real scaled = std::clamp(known * fullScale, -fullScale, fullScale - 1);
    return static_cast<qint32>((scaled + roundingPlace) - roundingPlace);
}

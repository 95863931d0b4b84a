#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <limits>

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
    constexpr double fullScale = 1 << (bits - 1);
    const double scaled =
        std::isnan(value) ? 0.0 : std::clamp(double{value} * fullScale, -fullScale, fullScale - 1);
    return static_cast<qint32>(std::lrint(scaled));
}

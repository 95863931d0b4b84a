#pragma once

#include <QtGlobal>

#include <algorithm>
#include <limits>

/// A float with full scale at 1 as a sample, cut toward 0 and limited. Full
/// scale up, which no 32-bit sample can hold, turns into full scale down.
inline qint32 sampleFromFloat(float value)
{
    constexpr float fullScale = 2147483648.0f;
    const float scaled = std::clamp(value * fullScale, -fullScale, fullScale);
    return scaled == fullScale ? std::numeric_limits<qint32>::min() : static_cast<qint32>(scaled);
}

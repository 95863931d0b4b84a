#pragma once

#include "codecs/AudioFormat.h"

#include <algorithm>
#include <vector>

/// A block of so many frames from the front of a buffer of 16-bit samples. A
/// buffer that holds fewer gives fewer.
inline AudioBlock widenShorts(const std::vector<qint16>& buffer, std::size_t frames, quint16 channels)
{
    const std::size_t held = std::min(frames, buffer.size() / channels);
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(held * channels)), held};
    std::transform(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(held * channels),
                   block.samples.begin(), [](qint16 sample) { return qint32{sample} * 65536; });
    return block;
}

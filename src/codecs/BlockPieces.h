#pragma once

#include "codecs/AudioFormat.h"

#include <algorithm>
#include <cstddef>

/// The frames of the block that its sample list really holds.
inline quint64 heldFrames(const AudioBlock& block, quint16 channels)
{
    const auto samples = static_cast<quint64>(block.samples.size());
    return std::min(block.frames, samples / std::max<quint16>(channels, 1));
}

/// Hands the frames that the block holds on in pieces, so that what is made of
/// them takes little memory: `take(samples, frames)`, up to one that it refuses.
/// Returns whether it took them all.
template<typename Take>
bool passOnInPieces(const AudioBlock& block, quint16 channels, std::size_t mostFrames, Take&& take)
{
    const qint32* samples = block.samples.constData();
    for (quint64 waiting = heldFrames(block, channels); waiting > 0;) {
        const auto frames = static_cast<std::size_t>(std::min<quint64>(waiting, mostFrames));
        if (!take(samples, frames))
            return false;
        samples += frames * channels;
        waiting -= frames;
    }
    return true;
}

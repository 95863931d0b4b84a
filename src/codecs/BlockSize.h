#pragma once

#include <QtGlobal>

#include <algorithm>

/// Frames that a decoder asks for at a time: 4096, or fewer where a header names
/// so many channels that the samples would not stay below 16 MiB.
constexpr quint64 framesPerBlock(quint16 channels)
{
    constexpr quint64 mostFrames = 4096;
    constexpr quint64 mostBytes = 16 * 1024 * 1024 - 1;
    return std::min(mostFrames, mostBytes / (sizeof(qint32) * std::max<quint64>(channels, 1)));
}

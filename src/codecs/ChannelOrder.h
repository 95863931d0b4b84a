#pragma once

#include <QtGlobal>

#include <array>

/// Where the channels of a WAVE file stand among those of Vorbis and of Opus,
/// which put the centre between left and right and the low one last. One and two
/// channels stand alike; beyond eight there is no order to go by.
constexpr std::size_t vorbisPlace(std::size_t waveChannel, std::size_t channels)
{
    constexpr std::array<std::array<quint8, 8>, 9> places{{
        {},
        {0},
        {0, 1},
        {0, 2, 1},
        {0, 1, 2, 3},
        {0, 2, 1, 3, 4},
        {0, 2, 1, 5, 3, 4},
        {0, 2, 1, 6, 5, 3, 4},
        {0, 2, 1, 7, 5, 6, 3, 4},
    }};
    return channels < places.size() ? places[channels][waveChannel] : waveChannel;
}

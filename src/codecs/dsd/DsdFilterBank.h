#pragma once

#include "codecs/AudioFormat.h"
#include "codecs/dsd/DsdFirFilter.h"

#include <vector>

/// Where the bytes of the channels lie in the bytes of a read.
struct DsdInterleave {
    std::size_t channelStep = 0; ///< bytes from one channel's first byte to the next one's
    std::size_t byteStep = 0;    ///< bytes from one byte of a channel to its next
    bool lsbFirst = false;
};

/// The filters of all channels of a file, whose history runs on from block to
/// block, and the step from their output to samples.
class DsdFilterBank {
public:
    void reset(quint16 channels) { filters.assign(channels, DsdFirFilter()); }

    /// One block of as many frames as there are bytes of each channel.
    AudioBlock decode(const std::vector<quint8>& bytes, std::size_t frames, const DsdInterleave& interleave);

private:
    std::vector<DsdFirFilter> filters;
};

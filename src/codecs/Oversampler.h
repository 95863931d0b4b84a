#pragma once

#include "codecs/AudioFormat.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

/// Raises the sample rate by a whole number: zeroes between the samples, then a
/// Kaiser-windowed sinc of 384 taps. The delay of 191.5 output frames stays in,
/// and the filter's tail never comes out. History runs across blocks.
class Oversampler {
public:
    /// @param factor  2 or more
    Oversampler(int channels, quint32 factor);
    ~Oversampler();

    /// A block with `factor` times as many frames.
    AudioBlock run(const AudioBlock& block);

private:
    struct OversamplerChannel;
    static constexpr std::size_t tapCount = 384;

    int channels;
    quint32 factor;
    std::array<double, tapCount> taps; ///< floats, widened once for all channels
    std::vector<std::unique_ptr<OversamplerChannel>> filters;
};

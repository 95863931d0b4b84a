#include "codecs/DsdFilterBank.h"

#include <algorithm>
#include <limits>

qint32 dsdSample(float value)
{
    constexpr float fullScale = 2147483648.0f;
    const float scaled = std::clamp(value * fullScale, -fullScale, fullScale);
    return scaled == fullScale ? std::numeric_limits<qint32>::min() : static_cast<qint32>(scaled);
}

AudioBlock DsdFilterBank::decode(const std::vector<quint8>& bytes, std::size_t frames,
                                 const DsdInterleave& interleave)
{
    const std::size_t channels = filters.size();
    std::vector<float> filtered(channels * frames);
    for (std::size_t channel = 0; channel < channels; ++channel)
        decodeDsdBytes(filters[channel], bytes.data() + channel * interleave.channelStep, frames,
                       interleave.lsbFirst, filtered.data() + channel, interleave.byteStep, channels);

    AudioBlock block{QList<qint32>(static_cast<qsizetype>(filtered.size())), frames};
    std::transform(filtered.begin(), filtered.end(), block.samples.begin(), dsdSample);
    return block;
}

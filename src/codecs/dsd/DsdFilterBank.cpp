#include "codecs/dsd/DsdFilterBank.h"

#include "codecs/FloatSample.h"

#include <algorithm>

AudioBlock DsdFilterBank::decode(const std::vector<quint8>& bytes, std::size_t frames,
                                 const DsdInterleave& interleave)
{
    const std::size_t channels = filters.size();
    std::vector<float> filtered(channels * frames);
    for (std::size_t channel = 0; channel < channels; ++channel)
        decodeDsdBytes(filters[channel], bytes.data() + channel * interleave.channelStep, frames,
                       interleave.lsbFirst, filtered.data() + channel, interleave.byteStep, channels);

    AudioBlock block{QList<qint32>(static_cast<qsizetype>(filtered.size())), frames};
    std::transform(filtered.begin(), filtered.end(), block.samples.begin(), sampleFromFloat);
    return block;
}

#include "codecs/media/FfmpegFrameBytes.h"

#include "codecs/FloatSample.h"
#include "codecs/PcmUnpack.h"
#include "codecs/StreamChange.h"

extern "C" {
#include <libavutil/frame.h>
}

#include <algorithm>

namespace {

/// A sample of any format as a value of so many bits.
template<int bits>
qint32 scaled(qint16 sample)
{
    return qint32{sample} * (1 << (bits - 16));
}

template<int bits>
qint32 scaled(qint32 sample)
{
    return sample >> (32 - bits);
}

template<int bits>
qint32 scaled(float sample)
{
    return valueFromFloat<bits>(sample);
}

template<int bits, typename Sample>
void interleaveAs(const AVFrame& frame, std::size_t first, std::size_t frames, qint32* samples)
{
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto* source = reinterpret_cast<const Sample*>(frame.extended_data[channel]) + first;
        qint32* target = samples + channel;
        for (std::size_t i = 0; i < frames; ++i, target += channels)
            *target = scaled<bits>(source[i]) * (1 << (32 - bits));
    }
}

template<int bits>
void interleave(const AVFrame& frame, std::size_t first, std::size_t frames, qint32* samples)
{
    switch (frame.format) {
    case AV_SAMPLE_FMT_S16P:
        return interleaveAs<bits, qint16>(frame, first, frames, samples);
    case AV_SAMPLE_FMT_S32P:
        return interleaveAs<bits, qint32>(frame, first, frames, samples);
    case AV_SAMPLE_FMT_FLTP:
        return interleaveAs<bits, float>(frame, first, frames, samples);
    }
}

/// Spreads left-justified samples over a frame's planes, from one of its places on.
template<typename Sample, typename Convert>
void spread(const std::vector<qint32>& samples, AVFrame& frame, int first, int frames, Convert convert)
{
    const int channels = frame.ch_layout.nb_channels;
    for (int channel = 0; channel < channels; ++channel) {
        auto* plane = reinterpret_cast<Sample*>(frame.extended_data[channel]) + first;
        const qint32* source = samples.data() + channel;
        for (int i = 0; i < frames; ++i, source += channels)
            plane[i] = convert(*source);
    }
}

} // namespace

int packedBits(const AVFrame& frame)
{
    switch (frame.format) {
    case AV_SAMPLE_FMT_S16P:
        return 16;
    case AV_SAMPLE_FMT_S32P:
    case AV_SAMPLE_FMT_FLTP:
        return 24;
    default:
        return 0;
    }
}

AudioBlock blockOfFrame(const AVFrame& frame, int first, int frames, const AudioFormat& pcm)
{
    const auto start = static_cast<std::size_t>(first);
    const auto count = static_cast<std::size_t>(frames);
    const auto channels = static_cast<quint16>(frame.ch_layout.nb_channels);
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(count * channels)), count};
    if (pcm.bitsPerSample == 24)
        interleave<24>(frame, start, count, block.samples.data());
    else
        interleave<16>(frame, start, count, block.samples.data());
    return channels == pcm.channels ? block : mapChannels(block, channels, pcm.channels, pcm.bitsPerSample);
}

void fillFrame(AVFrame& frame, int first, const quint8* pcm, int frames, int bits,
               std::vector<qint32>& unpacked)
{
    constexpr float fullScale = 2147483648.0f;
    const auto count =
        static_cast<std::size_t>(frames) * static_cast<std::size_t>(frame.ch_layout.nb_channels);
    unpacked.resize(std::max(unpacked.size(), count));
    unpackPcm(pcm, count, bits, ByteOrder::Little, unpacked.data());
    switch (frame.format) {
    case AV_SAMPLE_FMT_FLTP:
        return spread<float>(unpacked, frame, first, frames,
                             [](qint32 sample) { return static_cast<float>(sample) / fullScale; });
    case AV_SAMPLE_FMT_S16P:
        return spread<qint16>(unpacked, frame, first, frames,
                              [](qint32 sample) { return static_cast<qint16>(sample >> 16); });
    case AV_SAMPLE_FMT_S32P:
        return spread<qint32>(unpacked, frame, first, frames, [](qint32 sample) { return sample; });
    }
}

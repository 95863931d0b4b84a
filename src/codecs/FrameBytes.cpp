#include "codecs/FrameBytes.h"

#include "base/ByteOrder.h"

extern "C" {
#include <libavutil/frame.h>
}

#include <algorithm>
#include <cmath>

namespace {

/// A sample of any format as a value of so many bits.
template<int bits>
qint32 scaled(quint8 sample)
{
    return (qint32{sample} - 128) * (1 << (bits - 8));
}

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
qint32 scaled(qint64 sample)
{
    return static_cast<qint32>(sample >> (64 - bits));
}

template<int bits>
qint32 scaled(double sample)
{
    constexpr double fullScale = 1 << (bits - 1);
    // A value that is no number is silence.
    const double value = std::isnan(sample) ? 0.0 : std::clamp(sample * fullScale, -fullScale, fullScale - 1);
    return static_cast<qint32>(std::lrint(value));
}

template<int bits>
qint32 scaled(float sample)
{
    return scaled<bits>(double{sample});
}

template<int bits, typename Sample>
void packChannel(const Sample* source, std::size_t sourceStep, std::size_t frames, quint8* target,
                 std::size_t targetStep)
{
    for (std::size_t i = 0; i < frames; ++i, source += sourceStep, target += targetStep) {
        const auto value = static_cast<quint32>(scaled<bits>(*source));
        byteorder::writeLittle<quint16>(target, static_cast<quint16>(value));
        if constexpr (bits == 24)
            target[2] = static_cast<quint8>(value >> 16);
    }
}

template<int bits, typename Sample>
void packAll(const AVFrame& frame, std::size_t first, std::size_t frames, quint8* target)
{
    const auto channels = static_cast<std::size_t>(frame.ch_layout.nb_channels);
    const bool planar = av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)) != 0;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const auto* plane = reinterpret_cast<const Sample*>(frame.extended_data[planar ? channel : 0]);
        packChannel<bits>(planar ? plane + first : plane + first * channels + channel, planar ? 1 : channels,
                          frames, target + channel * (bits / 8), channels * (bits / 8));
    }
}

template<int bits>
void packFormat(const AVFrame& frame, std::size_t first, std::size_t frames, quint8* target)
{
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format))) {
    case AV_SAMPLE_FMT_U8:
        return packAll<bits, quint8>(frame, first, frames, target);
    case AV_SAMPLE_FMT_S16:
        return packAll<bits, qint16>(frame, first, frames, target);
    case AV_SAMPLE_FMT_S32:
        return packAll<bits, qint32>(frame, first, frames, target);
    case AV_SAMPLE_FMT_S64:
        return packAll<bits, qint64>(frame, first, frames, target);
    case AV_SAMPLE_FMT_FLT:
        return packAll<bits, float>(frame, first, frames, target);
    case AV_SAMPLE_FMT_DBL:
        return packAll<bits, double>(frame, first, frames, target);
    default:
        return;
    }
}

} // namespace

bool isAtMost16Bits(const AVFrame& frame)
{
    const AVSampleFormat packed = av_get_packed_sample_fmt(static_cast<AVSampleFormat>(frame.format));
    return packed == AV_SAMPLE_FMT_U8 || packed == AV_SAMPLE_FMT_S16;
}

void packFrame(const AVFrame& frame, int first, int frames, int bits, std::vector<quint8>& bytes)
{
    const auto start = static_cast<std::size_t>(first);
    const auto count = static_cast<std::size_t>(frames);
    bytes.assign(count * static_cast<std::size_t>(frame.ch_layout.nb_channels)
                     * static_cast<std::size_t>(bits / 8),
                 0);
    if (bytes.empty())
        return;
    if (bits == 24)
        packFormat<24>(frame, start, count, bytes.data());
    else
        packFormat<16>(frame, start, count, bytes.data());
}

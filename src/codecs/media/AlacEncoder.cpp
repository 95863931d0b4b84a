#include "codecs/media/AlacEncoder.h"

#include <algorithm>

std::optional<MediaFormat> AlacEncoder::prepare(const AudioFormat& source)
{
    const bool narrow = source.bitsPerSample < 17;
    layout = narrow ? PcmLayout::Little16 : PcmLayout::Little24;
    const AudioFormat target{source.sampleRate, source.channels, static_cast<quint16>(narrow ? 16 : 24)};
    return MediaFormat{MediaCodec::Alac, target};
}

std::size_t AlacEncoder::pack(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes)
{
    const std::size_t count = frames * channels();
    bytes.resize(std::max(bytes.size(), count * static_cast<std::size_t>(pcmSampleBytes(layout))));
    packPcm(samples, count, layout, bytes.data());
    return frames;
}

#include "codecs/media/AacEncoder.h"

#include <algorithm>

namespace {

constexpr quint32 bytesPerSecond = 24000;
constexpr quint16 writtenBits = 16;

/// By how much a rate is brought down; 0 where that does not come out even.
quint32 rateFactor(quint32 rate)
{
    for (const quint32 taken : {44100u, 48000u}) {
        if (rate % taken == 0)
            return rate / taken;
    }
    return 0;
}

} // namespace

std::optional<MediaFormat> AacEncoder::prepare(const AudioFormat& source)
{
    const quint32 factor = rateFactor(source.sampleRate);
    if (factor == 0 || source.channels < 1 || source.channels > 2)
        return std::nullopt;
    decimator.reset();
    if (factor > 1)
        decimator = std::make_unique<AacDecimator>(source.channels, static_cast<int>(factor));
    dithered = source.bitsPerSample > writtenBits || factor > 1;
    const AudioFormat target{source.sampleRate / factor, source.channels, writtenBits};
    return MediaFormat{MediaCodec::Aac, target, bytesPerSecond};
}

std::size_t AacEncoder::pack(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes)
{
    if (!decimator)
        return dither(samples, frames, bytes);
    const AudioBlock piece{QList<qint32>(samples, samples + frames * channels()), frames};
    const AudioBlock reduced = decimator->run(piece);
    return dither(reduced.samples.constData(), static_cast<std::size_t>(reduced.frames), bytes);
}

std::size_t AacEncoder::dither(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes)
{
    const std::size_t count = frames * channels();
    bytes.resize(std::max(bytes.size(), 2 * count));
    noise.toPcm16(samples, count, dithered, bytes.data());
    return frames;
}

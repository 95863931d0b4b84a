#include "codecs/media/AacEncoder.h"

#include "codecs/NoThrow.h"
#include "codecs/PcmBytes.h"

#include <algorithm>
#include <optional>

namespace {

constexpr quint32 bytesPerSecond = 24000;
constexpr quint16 writtenBits = 16;
constexpr std::size_t framesPerPiece = 16 * 1024;

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

AacEncoder::~AacEncoder()
{
    static_cast<void>(close());
}

bool AacEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    return withoutThrowing([&] { return openWriter(path, format); });
}

bool AacEncoder::openWriter(const std::filesystem::path& path, const AudioFormat& source)
{
    const quint32 factor = rateFactor(source.sampleRate);
    if (writer || factor == 0 || source.channels < 1 || source.channels > 2)
        return false;
    std::unique_ptr<AacDecimator> reducer;
    if (factor > 1)
        reducer = std::make_unique<AacDecimator>(source.channels, static_cast<int>(factor));
    auto opened = makeWriter();
    const AudioFormat target{source.sampleRate / factor, source.channels, writtenBits};
    if (!opened->open(path, {MediaCodec::Aac, target, bytesPerSecond}))
        return false;
    whole = true;
    channels = source.channels;
    dithered = source.bitsPerSample > writtenBits || factor > 1;
    decimator = std::move(reducer);
    writer = std::move(opened);
    return true;
}

bool AacEncoder::write(const AudioBlock& block)
{
    // A block that the writer never saw is nothing that it could report.
    const auto written = withoutThrowing([&] { return std::optional(writer && writeBlock(block)); });
    whole = whole && written;
    return written.value_or(false);
}

bool AacEncoder::writeBlock(const AudioBlock& block)
{
    const qint32* samples = block.samples.constData();
    quint64 waiting = heldFrames(block, channels);
    // Once even with nothing to write, for the state of the file.
    do {
        const auto frames = static_cast<std::size_t>(std::min<quint64>(waiting, framesPerPiece));
        if (!writePiece(samples, frames))
            return false;
        samples += frames * channels;
        waiting -= frames;
    } while (waiting > 0);
    return true;
}

bool AacEncoder::writePiece(const qint32* samples, std::size_t frames)
{
    if (!decimator)
        return pack(samples, frames);
    const AudioBlock piece{QList<qint32>(samples, samples + frames * channels), frames};
    const AudioBlock reduced = decimator->run(piece);
    return pack(reduced.samples.constData(), static_cast<std::size_t>(reduced.frames));
}

bool AacEncoder::pack(const qint32* samples, std::size_t frames)
{
    const std::size_t count = frames * channels;
    pcm.resize(std::max(pcm.size(), 2 * count));
    dither.toPcm16(samples, count, dithered, pcm.data());
    return writer->write(pcm.data(), frames);
}

bool AacEncoder::close()
{
    return withoutThrowing([this] {
        const auto finished = std::move(writer);
        decimator.reset();
        return !finished || (finished->finish() && whole);
    });
}

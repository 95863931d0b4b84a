#include "codecs/media/AlacEncoder.h"

#include "codecs/NoThrow.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::size_t framesPerPiece = 16 * 1024;

} // namespace

AlacEncoder::~AlacEncoder()
{
    static_cast<void>(close());
}

bool AlacEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    return withoutThrowing([&] { return openWriter(path, format); });
}

bool AlacEncoder::openWriter(const std::filesystem::path& path, const AudioFormat& source)
{
    if (writer)
        return false;
    auto opened = makeWriter();
    const bool narrow = source.bitsPerSample < 17;
    const AudioFormat target{source.sampleRate, source.channels, static_cast<quint16>(narrow ? 16 : 24)};
    if (!opened->open(path, {MediaCodec::Alac, target}))
        return false;
    whole = true;
    channels = source.channels;
    layout = narrow ? PcmLayout::Little16 : PcmLayout::Little24;
    writer = std::move(opened);
    return true;
}

bool AlacEncoder::write(const AudioBlock& block)
{
    // A block that the writer never saw is nothing that it could report.
    const auto written = withoutThrowing([&] { return std::optional(writer && writeBlock(block)); });
    whole = whole && written;
    return written.value_or(false);
}

bool AlacEncoder::writeBlock(const AudioBlock& block)
{
    const qint32* samples = block.samples.constData();
    quint64 waiting = heldFrames(block, channels);
    // Once even with nothing to write, for the state of the file.
    do {
        const auto frames = static_cast<std::size_t>(std::min<quint64>(waiting, framesPerPiece));
        const std::size_t count = frames * channels;
        pcm.resize(std::max(pcm.size(), count * static_cast<std::size_t>(pcmSampleBytes(layout))));
        packPcm(samples, count, layout, pcm.data());
        if (!writer->write(pcm.data(), frames))
            return false;
        samples += count;
        waiting -= frames;
    } while (waiting > 0);
    return true;
}

bool AlacEncoder::close()
{
    return withoutThrowing([this] {
        const auto finished = std::move(writer);
        return !finished || (finished->finish() && whole);
    });
}

#include "codecs/media/MediaEncoder.h"

#include "codecs/BlockPieces.h"
#include "codecs/NoThrow.h"

MediaEncoder::~MediaEncoder()
{
    static_cast<void>(MediaEncoder::close());
}

bool MediaEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    return withoutThrowing([&] { return openWriter(path, format); });
}

bool MediaEncoder::openWriter(const std::filesystem::path& path, const AudioFormat& source)
{
    const auto wanted = writer ? std::nullopt : prepare(source);
    if (!wanted)
        return false;
    auto opened = makeWriter();
    if (!opened->open(path, *wanted))
        return false;
    whole = true;
    sourceChannels = source.channels;
    writer = std::move(opened);
    return true;
}

bool MediaEncoder::write(const AudioBlock& block)
{
    // A block that the writer never saw is nothing that it could report.
    const auto written = withoutThrowing([&] { return std::optional(writer && writeBlock(block)); });
    whole = whole && written;
    return written.value_or(false);
}

bool MediaEncoder::writeBlock(const AudioBlock& block)
{
    constexpr std::size_t framesPerPiece = 16 * 1024;
    const auto take = [this](const qint32* samples, std::size_t frames) {
        return writePiece(samples, frames);
    };
    // Once even with nothing to write, for the state of the file.
    return heldFrames(block, sourceChannels) == 0
               ? take(nullptr, 0)
               : passOnInPieces(block, sourceChannels, framesPerPiece, take);
}

bool MediaEncoder::writePiece(const qint32* samples, std::size_t frames)
{
    const std::size_t packed = pack(samples, frames, pcm);
    return writer->write(pcm.data(), packed);
}

bool MediaEncoder::close()
{
    return withoutThrowing([this] {
        const auto finished = std::move(writer);
        return !finished || (finished->finish() && whole);
    });
}

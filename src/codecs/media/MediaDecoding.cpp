#include "codecs/media/MediaDecoding.h"

#include "codecs/NoThrow.h"
#include "codecs/PcmUnpack.h"

bool MediaDecoding::open(const std::filesystem::path& path)
{
    if (reader)
        return false;
    return withoutThrowing([&] { return openReader(path); });
}

bool MediaDecoding::openReader(const std::filesystem::path& path)
{
    constexpr double ticksASecond = 1e7;

    auto opened = makeReader();
    if (!opened->open(path) || !(opened->choosePcm(24) || opened->choosePcm(16)))
        return false;
    const AudioFormat delivered = opened->format();
    if (delivered.sampleRate == 0 || delivered.channels == 0 || delivered.bitsPerSample == 0)
        return false;
    pcm = delivered;
    total.reset();
    if (const auto ticks = opened->duration())
        total = static_cast<quint64>(static_cast<double>(*ticks) / ticksASecond * pcm.sampleRate);
    reader = std::move(opened);
    ended = false;
    return true;
}

std::optional<AudioBlock> MediaDecoding::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> MediaDecoding::readBlock()
{
    if (!reader || ended)
        return std::nullopt;
    switch (reader->read(bytes)) {
    case MediaReader::Outcome::Samples:
        break;
    case MediaReader::Outcome::Gap:
        return AudioBlock();
    case MediaReader::Outcome::End:
    case MediaReader::Outcome::Failure:
        ended = true;
        return std::nullopt;
    }
    const int width = pcm.bitsPerSample == 24 ? 24 : 16;
    const std::size_t frames = bytes.size() / static_cast<std::size_t>(width / 8) / pcm.channels;
    const std::size_t count = frames * pcm.channels;
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(count)), frames};
    unpackPcm(bytes.data(), count, width, ByteOrder::Little, block.samples.data());
    return block;
}

void MediaDecoding::close()
{
    reader.reset();
    ended = false;
}

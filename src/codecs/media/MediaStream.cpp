#include "codecs/media/MediaStream.h"

#include "codecs/PcmUnpack.h"

bool MediaStream::open(const std::filesystem::path& path)
{
    constexpr double ticksASecond = 1e7;

    if (!reader->open(path) || !(reader->choosePcm(24) || reader->choosePcm(16)))
        return false;
    pcm = reader->format();
    if (pcm.sampleRate == 0 || pcm.channels == 0 || pcm.bitsPerSample == 0)
        return false;
    if (const auto ticks = reader->duration())
        total = static_cast<quint64>(static_cast<double>(*ticks) / ticksASecond * pcm.sampleRate);
    return true;
}

std::optional<AudioBlock> MediaStream::read()
{
    switch (reader->read(bytes)) {
    case MediaReader::Outcome::Samples:
        break;
    case MediaReader::Outcome::Gap:
        return AudioBlock();
    case MediaReader::Outcome::End:
    case MediaReader::Outcome::Failure:
        return std::nullopt;
    }
    const int width = pcm.bitsPerSample == 24 ? 24 : 16;
    const std::size_t frames = bytes.size() / static_cast<std::size_t>(width / 8) / pcm.channels;
    const std::size_t count = frames * pcm.channels;
    AudioBlock block{QList<qint32>(static_cast<qsizetype>(count)), frames};
    unpackPcm(bytes.data(), count, width, ByteOrder::Little, block.samples.data());
    return block;
}

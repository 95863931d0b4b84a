#include "codecs/media/MediaStream.h"

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
    AudioBlock block;
    switch (reader->read(block)) {
    case MediaReader::Outcome::Samples:
        return block;
    case MediaReader::Outcome::Gap:
        return AudioBlock();
    case MediaReader::Outcome::End:
    case MediaReader::Outcome::Failure:
        break;
    }
    return std::nullopt;
}

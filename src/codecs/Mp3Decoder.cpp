#include "codecs/Mp3Decoder.h"

Mp3Decoder::~Mp3Decoder() = default;

bool Mp3Decoder::open(const std::filesystem::path& path)
{
    return media.open(path);
}

AudioFormat Mp3Decoder::format() const
{
    return media.format();
}

std::optional<AudioBlock> Mp3Decoder::read()
{
    return media.read();
}

std::optional<quint64> Mp3Decoder::totalFrames() const
{
    return media.totalFrames();
}

void Mp3Decoder::close()
{
    media.close();
}

#include "codecs/AacDecoder.h"

AacDecoder::~AacDecoder() = default;

bool AacDecoder::open(const std::filesystem::path& path)
{
    return media.open(path);
}

AudioFormat AacDecoder::format() const
{
    return media.format();
}

std::optional<AudioBlock> AacDecoder::read()
{
    return media.read();
}

std::optional<quint64> AacDecoder::totalFrames() const
{
    return media.totalFrames();
}

void AacDecoder::close()
{
    media.close();
}

#include "codecs/AacEncoder.h"

bool AacEncoder::open(const std::filesystem::path&, const AudioFormat&)
{
    return false;
}

bool AacEncoder::write(const AudioBlock&)
{
    return false;
}

bool AacEncoder::close()
{
    return true;
}

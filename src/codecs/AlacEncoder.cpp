#include "codecs/AlacEncoder.h"

bool AlacEncoder::open(const std::filesystem::path&, const AudioFormat&)
{
    return false;
}

bool AlacEncoder::write(const AudioBlock&)
{
    return false;
}

bool AlacEncoder::close()
{
    return true;
}

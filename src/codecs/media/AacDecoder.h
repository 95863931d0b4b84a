#pragma once

#include "codecs/StreamDecoder.h"

/// AAC in ADTS and MPEG-4 files, and ALAC in the latter, decoded by the platform.
class AacDecoder : public StreamDecoder {
public:
    AacDecoder();
};

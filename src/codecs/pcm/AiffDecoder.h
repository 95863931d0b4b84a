#pragma once

#include "codecs/StreamDecoder.h"

/// AIFF of 16, 24 or 32 bits. AIFF-C is refused. The frame count that the header
/// states plays no part; the size of the samples does.
class AiffDecoder : public StreamDecoder {
public:
    AiffDecoder();
};

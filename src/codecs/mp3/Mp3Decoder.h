#pragma once

#include "codecs/StreamDecoder.h"

/// MPEG Layer III, decoded by the platform.
class Mp3Decoder : public StreamDecoder {
public:
    Mp3Decoder();
};

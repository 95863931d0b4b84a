#pragma once

#include "codecs/StreamDecoder.h"

/// WavPack, through its library, without a correction file. Floating-point files
/// come out as their words, taken for integers.
class WavPackDecoder : public StreamDecoder {
public:
    WavPackDecoder();
};

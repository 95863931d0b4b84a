#pragma once

#include "codecs/StreamDecoder.h"

/// DSDIFF, one-bit audio with the channels interleaved byte by byte. Delivers an
/// eighth of the DSD rate, one frame for each byte of a channel. Compressed
/// (DST) files are refused.
class DffDecoder : public StreamDecoder {
public:
    DffDecoder();
};

#pragma once

#include "codecs/StreamDecoder.h"

/// RIFF WAVE, read as integers of the width that the header states, whatever its
/// format tag says. Widths other than 16, 24 and 32 deliver silence. Chunks are
/// taken to follow each other without pad bytes.
class WavDecoder : public StreamDecoder {
public:
    WavDecoder();
};

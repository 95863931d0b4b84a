#pragma once

#include "codecs/StreamDecoder.h"

/// Native FLAC, through libFLAC. A total of 0 is one that the file does not
/// state. Around a damaged frame the audio is silent or missing, and the rest follows;
/// the stream ends at a frame with another number of channels than the header names.
class FlacDecoder : public StreamDecoder {
public:
    FlacDecoder();
};

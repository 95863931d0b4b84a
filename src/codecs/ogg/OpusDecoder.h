#pragma once

#include "codecs/StreamDecoder.h"

/// Opus in Ogg, through libopusfile, always at 48000 Hz whatever was recorded. The
/// links of a chained file are delivered in the first one's number of channels.
class OpusDecoder_ : public StreamDecoder {
public:
    OpusDecoder_();
};

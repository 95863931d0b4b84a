#pragma once

#include "codecs/StreamDecoder.h"

/// Ogg Vorbis, through libvorbisfile, rounded to 16 bits. What a damaged page held
/// is left out, and the rest follows. The links of a chained file are delivered in
/// the first one's number of channels, up to one of another rate.
class OggDecoder : public StreamDecoder {
public:
    OggDecoder();
};

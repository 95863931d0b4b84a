#include "codecs/media/AacDecoder.h"

#include "codecs/Make.h"
#include "codecs/media/MediaStream.h"

AacDecoder::AacDecoder() : StreamDecoder(make<AudioStream, MediaStream>) {}

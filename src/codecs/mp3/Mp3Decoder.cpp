#include "codecs/mp3/Mp3Decoder.h"

#include "codecs/Make.h"
#include "codecs/media/MediaStream.h"

Mp3Decoder::Mp3Decoder() : StreamDecoder(make<AudioStream, MediaStream>) {}

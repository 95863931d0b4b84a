#include "codecs/media/LinuxMediaModule.h"

#include "codecs/media/MediaReader.h"
#include "codecs/media/MediaWriter.h"

extern "C" {

[[gnu::visibility("default")]] NewMediaReader newMediaReader;
[[gnu::visibility("default")]] NewMediaWriter newMediaWriter;

MediaReader* newMediaReader()
{
    return makeMediaReader().release();
}

MediaWriter* newMediaWriter()
{
    return makeMediaWriter().release();
}
}

#include "codecs/StreamDecoder.h"

#include "codecs/AudioStream.h"
#include "codecs/NoThrow.h"

StreamDecoder::StreamDecoder(StreamMaker streamMaker, std::optional<quint64> unopenedTotal)
    : maker(streamMaker), total(unopenedTotal)
{
}

StreamDecoder::~StreamDecoder() = default;

bool StreamDecoder::open(const std::filesystem::path& path)
{
    if (stream)
        return false;
    return withoutThrowing([&] {
        auto opened = maker();
        if (!opened->open(path))
            return false;
        pcm = opened->format();
        total = opened->totalFrames();
        stream = std::move(opened);
        ended = false;
        return true;
    });
}

std::optional<AudioBlock> StreamDecoder::read()
{
    if (!stream || ended)
        return std::nullopt;
    auto block = withoutThrowing([this] { return stream->read(); });
    ended = !block;
    return block;
}

void StreamDecoder::close()
{
    stream.reset();
}

#include "codecs/dsd/DsfDecoder.h"

#include "codecs/dsd/DsdFileStream.h"

#include <algorithm>
#include <limits>

namespace {

constexpr quint64 dataHeaderBytes = 12;
constexpr quint64 mostBlockBytes = 256 * 1024 * 1024;

bool readFormatChunk(InputFile& file, DsdLayoutInFile& layout)
{
    if (!file.readMagic("fmt "))
        return false;
    file.readLittle<quint64>(); // chunk size
    file.readLittle<quint32>(); // format version
    const auto formatId = file.readLittle<quint32>();
    file.readLittle<quint32>(); // channel type
    const auto channels = file.readLittle<quint32>();
    layout.frequency = file.readLittle<quint32>();
    layout.lsbFirst = file.readLittle<quint32>() == 1;
    file.readLittle<quint64>(); // samples of a channel, without padding
    layout.blockFrames = file.readLittle<quint32>();
    file.readLittle<quint32>(); // reserved
    if (!file.good() || formatId != 0)
        return false;
    if (channels == 0 || layout.frequency == 0 || layout.blockFrames == 0)
        return false;
    layout.channels = static_cast<quint16>(channels);
    return channels <= std::numeric_limits<quint16>::max();
}

/// In samples of all channels, with the data as the header states them.
quint64 largestBlock(const DsdLayoutInFile& layout)
{
    return std::min(layout.dataBytes / layout.channels, layout.blockFrames) * layout.channels;
}

std::optional<DsdLayoutInFile> readHeader(InputFile& file)
{
    if (!file.readMagic("DSD "))
        return std::nullopt;
    file.readLittle<quint64>(); // chunk size
    file.readLittle<quint64>(); // file size
    file.readLittle<quint64>(); // place of the metadata
    DsdLayoutInFile layout;
    if (!readFormatChunk(file, layout) || !file.readMagic("data"))
        return std::nullopt;
    const auto chunkBytes = file.readLittle<quint64>();
    if (!file.good())
        return std::nullopt;
    layout.dataBytes = chunkBytes > dataHeaderBytes ? chunkBytes - dataHeaderBytes : 0;
    if (largestBlock(layout) > mostBlockBytes / sizeof(qint32))
        return std::nullopt;
    layout.firstByte = file.position();
    layout.channelRuns = true;
    return layout;
}

std::unique_ptr<AudioStream> makeStream()
{
    return std::make_unique<DsdFileStream>(readHeader);
}

} // namespace

DsfDecoder::DsfDecoder() : StreamDecoder(makeStream) {}

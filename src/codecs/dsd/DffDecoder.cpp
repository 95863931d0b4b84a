#include "codecs/dsd/DffDecoder.h"

#include "codecs/BlockSize.h"
#include "codecs/dsd/DsdFileStream.h"

namespace {

constexpr quint64 chunkHeaderBytes = 12;

struct ChunksSeen {
    bool properties = false;
    bool sound = false;
    DsdLayoutInFile layout;
};

quint64 lowered(quint64 value, quint64 by)
{
    return value > by ? value - by : 0;
}

/// What a chunk takes of the one around it. An odd one is followed by a byte.
quint64 finishChunk(InputFile& file, quint64 size)
{
    const quint64 odd = size % 2;
    file.skip(odd);
    const quint64 whole = chunkHeaderBytes + size + odd;
    return whole < size ? size : whole;
}

/// False for a compression other than none.
bool readProperties(InputFile& file, quint64 size, ChunksSeen& seen)
{
    file.readBig<quint32>(); // kind of the properties
    quint64 inner = lowered(size, 4);
    while (file.good() && inner >= chunkHeaderBytes) {
        const auto id = file.readBig<quint32>();
        const auto innerSize = file.readBig<quint64>();
        quint64 taken = 0;
        if (id == chunkId("FS  ")) {
            seen.layout.frequency = file.readBig<quint32>();
            taken = 4;
        } else if (id == chunkId("CHNL")) {
            seen.layout.channels = file.readBig<quint16>();
            taken = 2;
        } else if (id == chunkId("CMPR")) {
            if (!file.readMagic("DSD "))
                return false;
            taken = 4;
        }
        file.skip(lowered(innerSize, taken));
        inner = lowered(inner, finishChunk(file, innerSize));
    }
    seen.properties = true;
    return true;
}

/// False for a file whose sound can't be read.
bool readChunk(InputFile& file, quint32 id, quint64 size, ChunksSeen& seen)
{
    if (id == chunkId("PROP"))
        return readProperties(file, size, seen);
    if (id == chunkId("DST "))
        return false;
    if (id == chunkId("DSD ")) {
        seen.layout.firstByte = file.position();
        seen.layout.dataBytes = size;
        seen.sound = true;
    }
    file.skip(size);
    return true;
}

std::optional<DsdLayoutInFile> readHeader(InputFile& file)
{
    const bool isForm = file.readMagic("FRM8");
    const auto formSize = file.readBig<quint64>();
    if (!file.readMagic("DSD ") || !isForm)
        return std::nullopt;

    ChunksSeen seen;
    quint64 left = lowered(formSize, 4);
    while (left >= chunkHeaderBytes && !(seen.properties && seen.sound)) {
        const auto id = file.readBig<quint32>();
        const auto size = file.readBig<quint64>();
        if (!file.good())
            break;
        if (!readChunk(file, id, size, seen))
            return std::nullopt;
        left = lowered(left, finishChunk(file, size));
        if (!file.good())
            break;
    }
    DsdLayoutInFile& layout = seen.layout;
    if (!seen.properties || !seen.sound || layout.frequency == 0 || layout.channels == 0)
        return std::nullopt;
    layout.blockFrames = framesPerBlock(layout.channels);
    return layout;
}

std::unique_ptr<AudioStream> makeStream()
{
    return std::make_unique<DsdFileStream>(readHeader);
}

} // namespace

DffDecoder::DffDecoder() : StreamDecoder(makeStream) {}

#include "codecs/DffDecoder.h"

#include "codecs/BlockSize.h"
#include "codecs/NoThrow.h"

#include <algorithm>

namespace {

constexpr quint64 chunkHeaderBytes = 12;

struct DffLayout {
    bool propertiesSeen = false;
    bool soundSeen = false;
    quint32 frequency = 0;
    quint16 channels = 0;
    quint64 dataOffset = 0;
    quint64 dataBytes = 0;
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
bool readProperties(InputFile& file, quint64 size, DffLayout& layout)
{
    file.readBig<quint32>(); // kind of the properties
    quint64 inner = lowered(size, 4);
    while (file.good() && inner >= chunkHeaderBytes) {
        const auto id = file.readBig<quint32>();
        const auto innerSize = file.readBig<quint64>();
        quint64 taken = 0;
        if (id == chunkId("FS  ")) {
            layout.frequency = file.readBig<quint32>();
            taken = 4;
        } else if (id == chunkId("CHNL")) {
            layout.channels = file.readBig<quint16>();
            taken = 2;
        } else if (id == chunkId("CMPR")) {
            if (!file.readMagic("DSD "))
                return false;
            taken = 4;
        }
        file.skip(lowered(innerSize, taken));
        inner = lowered(inner, finishChunk(file, innerSize));
    }
    layout.propertiesSeen = true;
    return true;
}

/// False for a file whose sound can't be read.
bool readChunk(InputFile& file, quint32 id, quint64 size, DffLayout& layout)
{
    if (id == chunkId("PROP"))
        return readProperties(file, size, layout);
    if (id == chunkId("DST "))
        return false;
    if (id == chunkId("DSD ")) {
        layout.dataOffset = file.position();
        layout.dataBytes = size;
        layout.soundSeen = true;
    }
    file.skip(size);
    return true;
}

std::optional<DffLayout> readHeader(InputFile& file)
{
    const bool isForm = file.readMagic("FRM8");
    const auto formSize = file.readBig<quint64>();
    if (!file.readMagic("DSD ") || !isForm)
        return std::nullopt;

    DffLayout layout;
    quint64 left = lowered(formSize, 4);
    while (left >= chunkHeaderBytes && !(layout.propertiesSeen && layout.soundSeen)) {
        const auto id = file.readBig<quint32>();
        const auto size = file.readBig<quint64>();
        if (!file.good())
            break;
        if (!readChunk(file, id, size, layout))
            return std::nullopt;
        left = lowered(left, finishChunk(file, size));
        if (!file.good())
            break;
    }
    if (!layout.propertiesSeen || !layout.soundSeen || layout.frequency == 0 || layout.channels == 0)
        return std::nullopt;
    return layout;
}

} // namespace

bool DffDecoder::open(const std::filesystem::path& path)
{
    if (!file.open(path))
        return false;
    const bool opened = withoutThrowing([this] {
        const auto layout = readHeader(file);
        if (!layout)
            return false;
        pcm = {layout->frequency >> 3, layout->channels, 24};
        total = layout->dataBytes / layout->channels;
        filters.reset(layout->channels);
        file.clear();
        file.seek(layout->dataOffset);
        position = 0;
        return true;
    });
    if (!opened) {
        close();
        pcm = {};
        total.reset();
    }
    return opened;
}

std::optional<AudioBlock> DffDecoder::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> DffDecoder::readBlock()
{
    if (filters.isEmpty() || position >= total.value_or(0))
        return std::nullopt;
    const std::size_t frames = std::min(*total - position, framesPerBlock(pcm.channels));
    std::vector<quint8> bytes(frames * pcm.channels);
    file.read(bytes.data(), bytes.size());
    position += frames;
    return filters.decode(bytes, frames, {1, pcm.channels, false});
}

void DffDecoder::close()
{
    file.close();
    filters.clear();
    position = 0;
}

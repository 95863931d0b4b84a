#include "codecs/DsfDecoder.h"

#include "codecs/NoThrow.h"

#include <algorithm>
#include <limits>

namespace {

constexpr quint64 dataHeaderBytes = 12;
constexpr quint64 mostBlockBytes = 256 * 1024 * 1024;

} // namespace

bool DsfDecoder::open(const std::filesystem::path& path)
{
    if (!file.open(path))
        return false;
    const bool opened = withoutThrowing([this] { return readHeader(); });
    if (!opened) {
        close();
        pcm = {};
        total.reset();
    }
    return opened;
}

bool DsfDecoder::readHeader()
{
    if (!file.readMagic("DSD "))
        return false;
    file.readLittle<quint64>(); // chunk size
    file.readLittle<quint64>(); // file size
    file.readLittle<quint64>(); // place of the metadata
    if (!readFormatChunk() || !file.readMagic("data"))
        return false;
    const auto chunkBytes = file.readLittle<quint64>();
    if (!file.good())
        return false;
    const quint64 dataBytes = chunkBytes > dataHeaderBytes ? chunkBytes - dataHeaderBytes : 0;
    total = dataBytes / pcm.channels;
    filters.reset(pcm.channels);
    position = 0;
    return true;
}

bool DsfDecoder::readFormatChunk()
{
    if (!file.readMagic("fmt "))
        return false;
    file.readLittle<quint64>(); // chunk size
    file.readLittle<quint32>(); // format version
    const auto formatId = file.readLittle<quint32>();
    file.readLittle<quint32>(); // channel type
    const auto channels = file.readLittle<quint32>();
    const auto frequency = file.readLittle<quint32>();
    const auto bits = file.readLittle<quint32>();
    file.readLittle<quint64>(); // samples of a channel, without padding
    blockBytes = file.readLittle<quint32>();
    file.readLittle<quint32>(); // reserved
    if (!file.good() || formatId != 0)
        return false;
    if (channels == 0 || frequency == 0 || blockBytes == 0)
        return false;
    if (channels > std::numeric_limits<quint16>::max()
        || quint64{blockBytes} * channels > mostBlockBytes / sizeof(qint32))
        return false;
    lsbFirst = bits == 1;
    pcm = {frequency >> 3, static_cast<quint16>(channels), 24};
    return true;
}

std::optional<AudioBlock> DsfDecoder::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> DsfDecoder::readBlock()
{
    if (filters.isEmpty() || position >= total.value_or(0))
        return std::nullopt;
    const std::size_t frames = std::min<quint64>(*total - position, blockBytes);
    std::vector<quint8> bytes(frames * pcm.channels);
    file.read(bytes.data(), bytes.size());
    position += frames;
    return filters.decode(bytes, frames, {frames, 1, lsbFirst});
}

void DsfDecoder::close()
{
    file.close();
    filters.clear();
    position = 0;
}

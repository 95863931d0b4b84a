#include "codecs/pcm/PcmFileStream.h"

#include "codecs/BlockSize.h"

#include <algorithm>
#include <vector>

bool PcmFileStream::open(const std::filesystem::path& path)
{
    const auto layout = file.open(path) ? readHeader(file) : std::nullopt;
    if (!layout)
        return false;
    pcm = layout->format;
    const quint64 frameBytes = quint64{pcm.channels} * (pcm.bitsPerSample / 8u);
    total = frameBytes == 0 ? 0 : layout->dataBytes / frameBytes;
    file.clear();
    file.seek(layout->firstSample);
    return true;
}

std::optional<AudioBlock> PcmFileStream::read()
{
    if (position >= *total)
        return std::nullopt;
    const quint64 frames = std::min(*total - position, framesPerBlock(pcm.channels));
    const std::size_t count = frames * pcm.channels;

    AudioBlock block{QList<qint32>(static_cast<qsizetype>(count)), frames};
    if (isUnpackable(pcm.bitsPerSample)) {
        std::vector<quint8> bytes(count * (pcm.bitsPerSample / 8u));
        file.read(bytes.data(), bytes.size());
        unpackPcm(bytes.data(), count, pcm.bitsPerSample, order, block.samples.data());
    }
    position += frames;
    return block;
}

#include "codecs/pcm/PcmFileReader.h"

#include "codecs/BlockSize.h"
#include "codecs/NoThrow.h"

#include <algorithm>
#include <vector>

bool PcmFileReader::open(const std::filesystem::path& path, HeaderReader readHeader)
{
    if (!file.open(path))
        return false;
    const auto layout = readHeader(file);
    if (layout)
        start(*layout);
    else
        file.close();
    return layout.has_value();
}

void PcmFileReader::start(const PcmLayoutInFile& layout)
{
    pcm = layout.format;
    const quint64 frameBytes = quint64{pcm.channels} * (pcm.bitsPerSample / 8u);
    total = frameBytes == 0 ? 0 : layout.dataBytes / frameBytes;
    position = 0;
    file.clear();
    file.seek(layout.firstSample);
}

std::optional<AudioBlock> PcmFileReader::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> PcmFileReader::readBlock()
{
    if (!file.isOpen() || position >= total)
        return std::nullopt;
    const quint64 frames = std::min(total - position, framesPerBlock(pcm.channels));
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

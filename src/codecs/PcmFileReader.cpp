#include "codecs/PcmFileReader.h"

#include "codecs/BlockSize.h"

#include <algorithm>
#include <vector>

void PcmFileReader::start(InputFile& file, const PcmLayoutInFile& layout)
{
    pcm = layout.format;
    const quint64 frameBytes = quint64{pcm.channels} * (pcm.bitsPerSample / 8u);
    total = frameBytes == 0 ? 0 : layout.dataBytes / frameBytes;
    position = 0;
    file.clear();
    file.seek(layout.firstSample);
}

std::optional<AudioBlock> PcmFileReader::read(InputFile& file)
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

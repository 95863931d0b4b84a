#include "codecs/pcm/WavDecoder.h"

#include "codecs/pcm/PcmFileStream.h"

namespace {

constexpr quint32 fixedFormatBytes = 16;

bool readFormatChunk(InputFile& file, quint32 size, AudioFormat& format)
{
    file.readLittle<quint16>(); // format tag
    format.channels = file.readLittle<quint16>();
    format.sampleRate = file.readLittle<quint32>();
    file.readLittle<quint32>(); // bytes a second
    file.readLittle<quint16>(); // bytes a frame
    format.bitsPerSample = file.readLittle<quint16>();
    if (!file.good())
        return false;
    if (size > fixedFormatBytes)
        file.skip(size - fixedFormatBytes);
    return true;
}

std::optional<PcmLayoutInFile> readHeader(InputFile& file)
{
    const bool isRiff = file.readMagic("RIFF");
    file.readLittle<quint32>(); // size of the file
    if (!file.readMagic("WAVE") || !isRiff)
        return std::nullopt;

    PcmLayoutInFile layout;
    bool formatSeen = false;
    bool dataSeen = false;
    while (!formatSeen || !dataSeen) {
        const auto id = file.readBig<quint32>();
        const auto size = file.readLittle<quint32>();
        if (!file.good())
            return std::nullopt;
        if (id == chunkId("fmt ")) {
            formatSeen = readFormatChunk(file, size, layout.format);
        } else {
            if (id == chunkId("data")) {
                layout.dataBytes = size;
                layout.firstSample = file.position();
                dataSeen = true;
            }
            file.skip(size);
        }
    }
    return layout;
}

std::unique_ptr<AudioStream> makeStream()
{
    return std::make_unique<PcmFileStream>(ByteOrder::Little, readHeader);
}

} // namespace

WavDecoder::WavDecoder() : StreamDecoder(makeStream, 0) {}

#include "codecs/pcm/AiffDecoder.h"

#include "codecs/pcm/PcmFileStream.h"

#include <cmath>

namespace {

constexpr quint32 fixedCommonBytes = 18;
constexpr quint32 soundFieldsBytes = 8;

// An 80-bit floating-point number. A rate that 32 bits can't hold counts as 0.
quint32 readRate(InputFile& file)
{
    constexpr int bias = 16383;
    constexpr int fractionBits = 63;
    const auto signAndExponent = file.readBig<quint16>();
    const auto mantissa = file.readBig<quint64>();
    const int exponent = signAndExponent & 0x7FFF;
    if (exponent == 0 && mantissa == 0)
        return 0;
    double value = std::ldexp(static_cast<double>(mantissa), exponent - bias - fractionBits);
    if (signAndExponent & 0x8000)
        value = -value;
    value += 0.5;
    return value >= 0 && value < 4294967296.0 ? static_cast<quint32>(value) : 0;
}

bool readCommonChunk(InputFile& file, quint32 size, AudioFormat& format)
{
    format.channels = file.readBig<quint16>();
    file.readBig<quint32>(); // frames
    format.bitsPerSample = file.readBig<quint16>();
    format.sampleRate = readRate(file);
    if (!file.good())
        return false;
    if (size > fixedCommonBytes)
        file.skip(size - fixedCommonBytes);
    return true;
}

bool readSoundChunk(InputFile& file, quint32 size, PcmLayoutInFile& layout)
{
    const auto offset = file.readBig<quint32>();
    file.readBig<quint32>(); // block size
    if (!file.good())
        return false;
    // A chunk too small for its own fields wraps to a size that no file has.
    layout.firstSample = file.position() + offset;
    layout.dataBytes = size - offset - soundFieldsBytes;
    file.skip(size - soundFieldsBytes);
    return true;
}

std::optional<PcmLayoutInFile> readHeader(InputFile& file)
{
    const bool isForm = file.readMagic("FORM");
    file.readBig<quint32>(); // size of the file
    if (!file.readMagic("AIFF") || !isForm)
        return std::nullopt;

    PcmLayoutInFile layout;
    bool commonSeen = false;
    bool soundSeen = false;
    while (!commonSeen || !soundSeen) {
        const auto id = file.readBig<quint32>();
        const auto size = file.readBig<quint32>();
        if (!file.good())
            return std::nullopt;
        if (id == chunkId("COMM"))
            commonSeen = readCommonChunk(file, size, layout.format);
        else if (id == chunkId("SSND"))
            soundSeen = readSoundChunk(file, size, layout);
        else
            file.skip(size);
        file.skip(size % 2);
    }
    if (!isUnpackable(layout.format.bitsPerSample))
        return std::nullopt;
    return layout;
}

std::unique_ptr<AudioStream> makeStream()
{
    return std::make_unique<PcmFileStream>(ByteOrder::Big, readHeader);
}

} // namespace

AiffDecoder::AiffDecoder() : StreamDecoder(makeStream, 0) {}

#include "codecs/pcm/AiffEncoder.h"

#include "base/ByteOrder.h"
#include "codecs/PcmBytes.h"

#include <array>
#include <bit>
#include <cstring>

namespace {

constexpr std::size_t headerBytes = 54;
constexpr quint64 formSizePosition = 4;
constexpr quint64 frameCountPosition = 22;
constexpr quint64 soundSizePosition = 42;
constexpr int exponentBias = 16383;

// An 80-bit extended float: sign and exponent, then the mantissa with its
// integer bit spelled out.
void writeExtended(quint8* bytes, quint32 value)
{
    if (value == 0) {
        std::memset(bytes, 0, 10);
        return;
    }
    const int exponent = static_cast<int>(std::bit_width(value)) - 1;
    byteorder::writeBig(bytes, static_cast<quint16>(exponent + exponentBias));
    byteorder::writeBig(bytes + 2, quint64{value} << (63 - exponent));
}

std::array<quint8, headerBytes> makeHeader(const AudioFormat& format, quint16 writtenBits)
{
    std::array<quint8, headerBytes> header{};
    std::memcpy(header.data(), "FORM\0\0\0\0AIFFCOMM", 16);
    byteorder::writeBig<quint32>(&header[16], 18);
    byteorder::writeBig(&header[20], format.channels);
    byteorder::writeBig(&header[26], writtenBits);
    writeExtended(&header[28], format.sampleRate);
    std::memcpy(&header[38], "SSND", 4);
    return header;
}

PcmLayout layoutOf(quint16 writtenBits)
{
    return writtenBits == 16 ? PcmLayout::Big16 : PcmLayout::Big24;
}

} // namespace

bool AiffEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    if (!file.open(path))
        return false;
    channels = format.channels;
    writtenBits = format.bitsPerSample == 16 ? 16 : 24;
    frames = 0;
    const auto header = makeHeader(format, writtenBits);
    return file.write(header.data(), header.size());
}

bool AiffEncoder::write(const AudioBlock& block)
{
    return file.attempt([&] { return writeBlock(block); });
}

bool AiffEncoder::writeBlock(const AudioBlock& block)
{
    if (block.frames == 0)
        return file.good();
    if (!writePcm(file, block, layoutOf(writtenBits)))
        return false;
    frames += block.frames;
    return true;
}

bool AiffEncoder::close()
{
    if (!file.isOpen())
        return false;
    const quint32 soundBytes = writtenBits / 8u * channels * static_cast<quint32>(frames);
    const quint32 pad = soundBytes % 2;
    if (pad != 0)
        file.write("", 1);
    file.patchBig(formSizePosition, soundBytes + 46 + pad);
    file.patchBig(frameCountPosition, static_cast<quint32>(frames));
    file.patchBig(soundSizePosition, soundBytes + 8);
    return file.finish();
}

#include "codecs/pcm/WavEncoder.h"

#include "base/ByteOrder.h"
#include "codecs/NoThrow.h"
#include "codecs/PcmBytes.h"

#include <QByteArray>

namespace {

constexpr quint16 integerPcmTag = 1;
constexpr quint16 extensibleTag = 0xFFFE;
constexpr quint64 riffSizePosition = 4;
constexpr char integerPcmSubFormat[] = "\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71";
constexpr int subFormatBytes = 16;

template<typename Integer>
void append(QByteArray& header, Integer value)
{
    char bytes[sizeof value];
    byteorder::writeLittle(bytes, value);
    header.append(bytes, sizeof bytes);
}

quint32 channelMask(quint16 channels)
{
    switch (channels) {
    case 1:
        return 4;
    case 2:
        return 3;
    default:
        return 0;
    }
}

QByteArray makeHeader(const AudioFormat& format, quint16 writtenBits)
{
    const bool extended = format.bitsPerSample > 16 || format.channels > 2;
    const quint32 frameBytes = quint32{format.channels} * (writtenBits / 8u);

    QByteArray header("RIFF\0\0\0\0WAVEfmt ", 16);
    append<quint32>(header, extended ? 40 : 16);
    append(header, extended ? extensibleTag : integerPcmTag);
    append(header, format.channels);
    append(header, format.sampleRate);
    append(header, frameBytes * format.sampleRate);
    append(header, static_cast<quint16>(frameBytes));
    append(header, writtenBits);
    if (extended) {
        append<quint16>(header, 22);
        append(header, writtenBits);
        append(header, channelMask(format.channels));
        header.append(integerPcmSubFormat, subFormatBytes);
    }
    header.append("data\0\0\0\0", 8);
    return header;
}

PcmLayout layoutOf(quint16 writtenBits)
{
    return writtenBits == 16 ? PcmLayout::Little16 : PcmLayout::Little24;
}

} // namespace

bool WavEncoder::open(const std::filesystem::path& path, const AudioFormat& format)
{
    return withoutThrowing([&] { return openFile(path, format); });
}

bool WavEncoder::openFile(const std::filesystem::path& path, const AudioFormat& format)
{
    const quint16 bits = format.bitsPerSample < 17 ? 16 : 24;
    const QByteArray header = makeHeader(format, bits);
    if (!file.open(path))
        return false;
    writtenBits = bits;
    dataBytes = 0;
    file.write(header.constData(), static_cast<std::size_t>(header.size()));
    dataSizePosition = file.position() - 4;
    return file.good();
}

bool WavEncoder::write(const AudioBlock& block)
{
    return file.attempt([&] { return writeBlock(block); });
}

bool WavEncoder::writeBlock(const AudioBlock& block)
{
    if (!writePcm(file, block, layoutOf(writtenBits)))
        return false;
    dataBytes += static_cast<quint64>(block.samples.size()) * (writtenBits / 8u);
    return true;
}

bool WavEncoder::close()
{
    if (!file.isOpen())
        return false;
    if (dataBytes % 2 != 0)
        file.write("", 1);
    file.patchLittle(riffSizePosition, static_cast<quint32>(file.position() - 8));
    file.patchLittle(dataSizePosition, static_cast<quint32>(dataBytes));
    return file.finish();
}

#include "codecs/PcmBytes.h"

#include "base/ByteOrder.h"
#include "codecs/AudioFormat.h"
#include "codecs/OutputFile.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t samplesPerPiece = 128 * 1024;

// One whole 16-bit store a sample, so that the compiler vectorises the loop,
// which it does not do for single bytes.
template<bool bigEndian>
void pack16(const qint32* samples, std::size_t count, quint8* target)
{
    constexpr bool swap = bigEndian == (std::endian::native == std::endian::little);
    for (std::size_t i = 0; i < count; ++i) {
        const quint32 bits = static_cast<quint32>(samples[i]);
        const quint32 ordered = swap ? (bits >> 24) | ((bits >> 8) & 0xFF00) : bits >> 16;
        const auto stored = static_cast<quint16>(ordered);
        std::memcpy(target + 2 * i, &stored, sizeof stored);
    }
}

void packLittle24(const qint32* samples, std::size_t count, quint8* target)
{
    // Four samples make three whole words.
    while (count >= 4) {
        const auto a = static_cast<quint32>(samples[0]);
        const auto b = static_cast<quint32>(samples[1]);
        const auto c = static_cast<quint32>(samples[2]);
        const auto d = static_cast<quint32>(samples[3]);
        byteorder::writeLittle<quint32>(target, (a >> 8) | ((b << 16) & 0xFF000000));
        byteorder::writeLittle<quint32>(target + 4, (b >> 16) | ((c << 8) & 0xFFFF0000));
        byteorder::writeLittle<quint32>(target + 8, (c >> 24) | (d & 0xFFFFFF00));
        samples += 4;
        target += 12;
        count -= 4;
    }
    for (; count > 0; --count, target += 3) {
        const auto bits = static_cast<quint32>(*samples++);
        byteorder::writeLittle<quint16>(target, static_cast<quint16>(bits >> 8));
        target[2] = static_cast<quint8>(bits >> 24);
    }
}

void packBig24(const qint32* samples, std::size_t count, quint8* target)
{
    for (std::size_t i = 0; i < count; ++i, target += 3) {
        const auto bits = static_cast<quint32>(samples[i]);
        byteorder::writeBig<quint16>(target, static_cast<quint16>(bits >> 16));
        target[2] = static_cast<quint8>(bits >> 8);
    }
}

} // namespace

void packPcm(const qint32* samples, std::size_t count, PcmLayout layout, quint8* target)
{
    switch (layout) {
    case PcmLayout::Little16:
        return pack16<false>(samples, count, target);
    case PcmLayout::Big16:
        return pack16<true>(samples, count, target);
    case PcmLayout::Little24:
        return packLittle24(samples, count, target);
    case PcmLayout::Big24:
        return packBig24(samples, count, target);
    }
}

bool writePcm(OutputFile& file, const AudioBlock& block, PcmLayout layout)
{
    const qint32* samples = block.samples.constData();
    auto left = static_cast<std::size_t>(block.samples.size());
    const auto sampleBytes = static_cast<std::size_t>(pcmSampleBytes(layout));
    std::vector<quint8> bytes(std::min(left, samplesPerPiece) * sampleBytes);
    while (left > 0 && file.good()) {
        const std::size_t count = std::min(left, samplesPerPiece);
        packPcm(samples, count, layout, bytes.data());
        file.write(bytes.data(), count * sampleBytes);
        samples += count;
        left -= count;
    }
    return file.good();
}

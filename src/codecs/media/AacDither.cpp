#include "codecs/media/AacDither.h"

#include "base/ByteOrder.h"

#include <algorithm>

namespace {

qint16 rounded(qint64 sample)
{
    return static_cast<qint16>(std::clamp<qint64>((sample + 32768) >> 16, -32768, 32767));
}

} // namespace

void AacDither::toPcm16(const qint32* samples, std::size_t count, bool dithered, quint8* target)
{
    for (std::size_t i = 0; i < count; ++i) {
        qint64 sample = samples[i];
        if (dithered) {
            // Two statements, since the order of the two draws matters.
            const auto up = static_cast<qint64>(engine() >> 16);
            const auto down = static_cast<qint64>(engine() >> 16);
            sample += up - down;
        }
        byteorder::writeLittle(target + 2 * i, rounded(sample));
    }
}

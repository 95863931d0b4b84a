#include "codecs/PcmUnpack.h"

#include "base/ByteOrder.h"

namespace {

template<ByteOrder order, int sampleBytes>
void unpack(const quint8* bytes, std::size_t count, qint32* target)
{
    for (std::size_t i = 0; i < count; ++i, bytes += sampleBytes) {
        quint32 bits = 0;
        if constexpr (sampleBytes == 4) {
            bits = order == ByteOrder::Little ? byteorder::readLittle<quint32>(bytes)
                                              : byteorder::readBig<quint32>(bytes);
        } else if constexpr (sampleBytes == 2) {
            const quint32 value = order == ByteOrder::Little ? byteorder::readLittle<quint16>(bytes)
                                                             : byteorder::readBig<quint16>(bytes);
            bits = value << 16;
        } else {
            constexpr bool little = order == ByteOrder::Little;
            bits = quint32{bytes[little ? 2 : 0]} << 24 | quint32{bytes[1]} << 16
                   | quint32{bytes[little ? 0 : 2]} << 8;
        }
        target[i] = static_cast<qint32>(bits);
    }
}

template<ByteOrder order>
void unpackOrdered(const quint8* bytes, std::size_t count, int bits, qint32* target)
{
    switch (bits) {
    case 16:
        return unpack<order, 2>(bytes, count, target);
    case 24:
        return unpack<order, 3>(bytes, count, target);
    case 32:
        return unpack<order, 4>(bytes, count, target);
    default:
        return;
    }
}

} // namespace

void unpackPcm(const quint8* bytes, std::size_t count, int bits, ByteOrder order, qint32* target)
{
    if (order == ByteOrder::Little)
        unpackOrdered<ByteOrder::Little>(bytes, count, bits, target);
    else
        unpackOrdered<ByteOrder::Big>(bytes, count, bits, target);
}

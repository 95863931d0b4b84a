#include "codecs/Mutation.h"

#include "base/ByteOrder.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

class Mutator {
public:
    Mutator(const QByteArray& valid, quint64 number) : bytes(valid), engine(number) {}

    void breakOnce()
    {
        if (bytes.isEmpty())
            return;
        switch (draw(8)) {
        case 0:
            return bytes.truncate(place());
        case 1:
            bytes.remove(place(), static_cast<qsizetype>(draw(64)) + 1);
            return;
        case 2: {
            const qsizetype from = place();
            bytes.insert(place(), bytes.mid(from, static_cast<qsizetype>(draw(256)) + 1));
            return;
        }
        case 3:
            for (quint64 i = draw(32) + 1; i > 0; --i)
                bytes[place()] = static_cast<char>(draw(256));
            return;
        case 4:
        case 5:
            return setField();
        default:
            const qsizetype flipped = place();
            bytes[flipped] = static_cast<char>(bytes[flipped] ^ (1 << draw(8)));
        }
    }

    quint64 draw(quint64 below) { return engine() % below; }

    QByteArray bytes;

private:
    /// Mostly among the headers.
    qsizetype place()
    {
        const auto size = static_cast<quint64>(bytes.size());
        constexpr quint64 reach[] = {64, 256, 8192, ~quint64{0}};
        return static_cast<qsizetype>(draw(std::min(size, reach[draw(std::size(reach))])));
    }

    void setField()
    {
        constexpr quint64 values[] = {0,           1,          2,
                                      0xFF,        0xFFFF,     0x7FFFFFFF,
                                      0x80000000,  0xFFFFFFFF, quint64{1} << 63,
                                      ~quint64{0}, 0x10000,    0x00FFFFFF};
        const quint64 value = values[draw(std::size(values))];
        const auto width = qsizetype{1} << draw(4);
        char field[8];
        if (draw(2) == 0) {
            byteorder::writeLittle(field, value);
            overwrite(field, width);
        } else {
            byteorder::writeBig(field, value);
            overwrite(field + sizeof field - width, width);
        }
    }

    void overwrite(const char* field, qsizetype width)
    {
        const qsizetype target = place();
        bytes.replace(target, std::min(width, bytes.size() - target), field, width);
    }

    std::mt19937_64 engine;
};

/// Every other one a byte longer, from nothing on, for the headers. Those between
/// take steps of the golden section, which leave no large part of the file out and
/// meet every length before they meet one again.
qsizetype truncatedLength(qsizetype size, quint64 turn)
{
    const auto lengths = static_cast<quint64>(size) + 1;
    const quint64 round = turn / 2 % lengths;
    if (turn % 2 == 0)
        return static_cast<qsizetype>(round);
    auto step = static_cast<quint64>(static_cast<double>(lengths) * 0.6180339887) + 1;
    while (std::gcd(step, lengths) != 1)
        ++step;
    return static_cast<qsizetype>((round + 1) * step % lengths);
}

/// Ogg's checksum: the polynomial 0x04C11DB7, highest bit first, from 0 on.
quint32 oggChecksum(const QByteArray& page)
{
    quint32 sum = 0;
    for (const char byte : page) {
        sum ^= quint32{static_cast<quint8>(byte)} << 24;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum << 1 ^ (sum >> 31) * 0x04C11DB7;
    }
    return sum;
}

} // namespace

QByteArray mutate(const QByteArray& valid, quint64 number)
{
    constexpr quint64 truncationEvery = 8;
    if (number % truncationEvery == 0)
        return valid.left(truncatedLength(valid.size(), number / truncationEvery));
    Mutator mutator(valid, number);
    for (quint64 i = mutator.draw(4) + 1; i > 0; --i)
        mutator.breakOnce();
    return mutator.bytes;
}

void sealOggPages(QByteArray& bytes)
{
    constexpr qsizetype fixedHeader = 27;
    constexpr qsizetype checksum = 22;
    for (qsizetype start = bytes.indexOf("OggS"); start >= 0; start = bytes.indexOf("OggS", start + 4)) {
        if (bytes.size() - start < fixedHeader)
            return;
        const qsizetype segments = static_cast<quint8>(bytes[start + fixedHeader - 1]);
        if (bytes.size() - start < fixedHeader + segments)
            return;
        qsizetype size = fixedHeader + segments;
        for (qsizetype i = 0; i < segments; ++i)
            size += static_cast<quint8>(bytes[start + fixedHeader + i]);
        if (bytes.size() - start < size)
            return;
        char* field = bytes.data() + start + checksum;
        byteorder::writeLittle(field, quint32{0});
        byteorder::writeLittle(field, oggChecksum(bytes.mid(start, size)));
    }
}

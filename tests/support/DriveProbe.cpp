#include "support/DriveProbe.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>
#include <array>
#include <bit>

DriveProbe::Answer DriveProbe::read(quint32 lba, quint32 count, bool guarded)
{
    Answer answer;
    answer.audio = QByteArray(qsizetype{count} * RAW_SECTOR_BYTES, '\0');
    const DriveReply reply = device->readRaw(
        lba, count,
        {reinterpret_cast<quint8*>(answer.audio.data()), static_cast<size_t>(answer.audio.size())}, guarded);
    answer.ok = reply.ok;
    answer.error = reply.errorNumber;
    return answer;
}

DriveProbe::Answer DriveProbe::readWithC2(quint32 lba, quint32 count)
{
    std::array<quint8, 12> command{0xBE, 0x04};
    byteorder::writeBig(command.data() + 2, lba);
    command[8] = static_cast<quint8>(count);
    command[9] = 0x12;
    QByteArray raw(qsizetype{count} * RAW_PLUS_C2_BYTES, '\0');
    const DriveReply reply = device->passThrough(
        command, {reinterpret_cast<quint8*>(raw.data()), static_cast<size_t>(raw.size())});
    Answer answer{reply.ok, reply.errorNumber, {}, {}};
    for (qsizetype start = 0; start < raw.size(); start += RAW_PLUS_C2_BYTES) {
        answer.audio += raw.mid(start, RAW_SECTOR_BYTES);
        answer.pointers += raw.mid(start + RAW_SECTOR_BYTES, C2_BLOCK_BYTES);
    }
    return answer;
}

int bitsIn(const QByteArray& bytes)
{
    int bits = 0;
    for (const char byte : bytes)
        bits += std::popcount(static_cast<quint8>(byte));
    return bits;
}

int differencesBetween(const QByteArray& one, const QByteArray& other)
{
    int differences = 0;
    for (qsizetype i = 0; i < std::min(one.size(), other.size()); ++i)
        differences += one[i] != other[i] ? 1 : 0;
    return differences;
}

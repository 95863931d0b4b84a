#include "disc/SectorBatch.h"

#include "disc/DiscModel.h"
#include "disc/PassThroughAlignment.h"
#include "disc/ReadCdCommand.h"

#include <bit>
#include <memory>
#include <numeric>
#include <utility>

namespace {

quint8* alignedStart(QByteArray& block)
{
    void* start = block.data();
    auto space = static_cast<size_t>(block.size());
    return static_cast<quint8*>(std::align(PASS_THROUGH_ALIGNMENT, 1, start, space));
}

} // namespace

QByteArray SectorBatch::sector(quint32 lba) const
{
    return data.mid(static_cast<qsizetype>(lba - first) * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
}

quint32 SectorBatch::c2Errors(quint32 lba) const
{
    return static_cast<quint32>(c2Counts.value(static_cast<qsizetype>(lba - first), 0));
}

bool readBatchPlain(DriveDevice& device, quint32 lba, quint32 count, SectorBatch& batch, DriveReply& reply)
{
    QByteArray data(static_cast<qsizetype>(count) * RAW_SECTOR_BYTES, Qt::Uninitialized);
    const std::span bytes{reinterpret_cast<quint8*>(data.data()), static_cast<size_t>(data.size())};
    reply = device.readRaw(lba, count, bytes, true);
    if (!reply.delivered(bytes.size()))
        return false;
    batch = {lba, count, std::move(data), {}};
    return true;
}

bool readBatchWithC2(DriveDevice& device, quint32 lba, quint32 count, SectorBatch& batch, DriveReply& reply)
{
    ReadCdBlock command{readCdCode, 0x04};
    setSectors(command, lba, count);
    command[9] = 0x12; // user data and the 294-byte C2 block

    const size_t length = size_t{count} * RAW_PLUS_C2_BYTES;
    QByteArray block(static_cast<qsizetype>(length + PASS_THROUGH_ALIGNMENT), '\0');
    quint8* bytes = alignedStart(block);
    reply = device.passThrough(command, {bytes, length});
    if (!reply.delivered(length))
        return false;

    batch = {lba, count, {}, {}};
    batch.data.reserve(static_cast<qsizetype>(count) * RAW_SECTOR_BYTES);
    for (quint32 i = 0; i < count; ++i) {
        const quint8* sector = bytes + size_t{i} * RAW_PLUS_C2_BYTES;
        batch.data.append(reinterpret_cast<const char*>(sector), RAW_SECTOR_BYTES);
        const quint8* pointers = sector + RAW_SECTOR_BYTES;
        batch.c2Counts.append(
            std::accumulate(pointers, pointers + C2_BLOCK_BYTES, 0,
                            [](int sum, quint8 bits) { return sum + std::popcount(bits); }));
    }
    return true;
}

#include "disc/ReadCdCommand.h"

#include "base/ByteOrder.h"

#include <algorithm>

void setSectors(ReadCdBlock& command, quint32 lba, quint32 count)
{
    byteorder::writeBig(command.data() + 2, lba);
    command[6] = static_cast<quint8>(count >> 16);
    command[7] = static_cast<quint8>(count >> 8);
    command[8] = static_cast<quint8>(count);
}

bool isReadCd(std::span<const quint8> command)
{
    return command.size() == std::tuple_size_v<ReadCdBlock> && command[0] == readCdCode;
}

SectorRange sectorsOf(std::span<const quint8> command)
{
    const auto first = byteorder::readBig<quint32>(command.data() + 2);
    return {first, first + static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8])};
}

DriveReply sendInPieces(ReadCdBlock command, std::span<quint8> data, size_t largestTransfer,
                        const SendCommand& send)
{
    const SectorRange all = sectorsOf(command);
    if (largestTransfer == 0 || all.count() == 0 || data.size() % all.count() != 0)
        return send(command, data);
    const size_t sectorBytes = data.size() / all.count();
    const auto sectorsAtOnce = static_cast<quint32>(std::max<size_t>(1, largestTransfer / sectorBytes));
    for (quint32 done = 0; done < all.count(); done += sectorsAtOnce) {
        const quint32 count = std::min(sectorsAtOnce, all.count() - done);
        setSectors(command, all.first + done, count);
        const auto room = data.subspan(done * sectorBytes, count * sectorBytes);
        DriveReply reply = send(command, room);
        if (!reply.delivered(room.size())) {
            reply.transferred += done * sectorBytes;
            return reply;
        }
    }
    return {true, 0, data.size()};
}

#pragma once

#include "disc/DriveDevice.h"
#include "disc/SectorRange.h"

#include <array>
#include <functional>
#include <span>

/// The command block READ CD: code, sector type, first sector in bytes 2 to 5,
/// number of sectors in bytes 6 to 8.
using ReadCdBlock = std::array<quint8, 12>;

inline constexpr quint8 readCdCode = 0xBE;

void setSectors(ReadCdBlock& command, quint32 lba, quint32 count);

bool isReadCd(std::span<const quint8> command);

/// What a READ CD command asks for.
SectorRange sectorsOf(std::span<const quint8> command);

using SendCommand = std::function<DriveReply(std::span<const quint8> command, std::span<quint8> data)>;

/// Sends a READ CD command as several where one would move more than the system
/// takes at once, each of whole sectors. The first that does not bring all of its
/// sectors ends the read with its reply.
/// @param largestTransfer  bytes of one command; 0: no limit is known
DriveReply sendInPieces(ReadCdBlock command, std::span<quint8> data, size_t largestTransfer,
                        const SendCommand& send);

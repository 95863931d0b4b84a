#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>

#include <functional>

/// Reads one sector twice, compares, and where the reads differ lets further
/// reads vote: three equal ones end it early, two are enough at the end, and the
/// lowest bytes win a tie. Fills the record; a sector that never gave two equal
/// reads is bad. Silence where nothing was read.
///
/// @param read      reads a sector; empty for a failure
/// @param maxReads  reads of the sector at most, the first two included
/// @param abort     ends the voting before its next read when it becomes true
QByteArray voteOnSector(const std::function<QByteArray(quint32 lba)>& read, quint32 lba, int maxReads,
                        const bool& abort, SectorResult& record);

/// The audio of a sector that could not be read.
QByteArray silentSector();

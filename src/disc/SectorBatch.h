#pragma once

#include "disc/DriveDevice.h"

#include <QByteArray>
#include <QList>

/// Neighbouring sectors that one command has delivered.
struct SectorBatch {
    quint32 first = 0;
    quint32 count = 0; ///< 0: there is none
    QByteArray data;
    QList<int> c2Counts; ///< bits of each sector; empty where pointers were not read

    bool holds(quint32 lba) const { return lba >= first && lba - first < count; }
    QByteArray sector(quint32 lba) const;
    quint32 c2Errors(quint32 lba) const;
};

/// One guarded raw read. A batch is filled by a whole delivery alone.
bool readBatchPlain(DriveDevice& device, quint32 lba, quint32 count, SectorBatch& batch, DriveReply& reply);
/// One READ CD with C2 error pointers.
bool readBatchWithC2(DriveDevice& device, quint32 lba, quint32 count, SectorBatch& batch, DriveReply& reply);

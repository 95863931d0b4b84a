#pragma once

#include "support/SimulatedDrive.h"

#include <QList>
#include <QtGlobal>

/// One kind of trouble: a disc, a drive, or both.
struct DamagedDisc {
    const char* name;
    /// Brings the trouble over a drive with a sound disc of some thousand sectors.
    void (*damage)(SimulatedDrive& drive, quint64 seed);
    bool c2Only = false; ///< is about C2 pointers, so nothing new without them
};

const QList<DamagedDisc>& damagedDiscs();

/// A sound disc of three tracks in a drive with a cache of 60 sectors, 40 times
/// real time fast, 4 times on damage.
/// @param audio  whole sectors
void insertSoundDisc(SimulatedDrive& drive, const QByteArray& audio);

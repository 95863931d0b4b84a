#pragma once

#include "support/SimulatedDrive.h"

#include <QList>
#include <QString>
#include <QtGlobal>

#include <functional>

/// One kind of trouble: a disc, a drive, or both.
struct DamagedDisc {
    QString name;
    /// Brings the trouble over a drive with a sound disc of some thousand sectors.
    std::function<void(SimulatedDrive& drive, quint64 seed)> damage;
    bool c2Only = false; ///< is about C2 pointers, so nothing new without them
};

const QList<DamagedDisc>& damagedDiscs();

/// A sound disc of three tracks in a drive with a cache of 60 sectors, 40 times
/// real time fast, 4 times on damage.
/// @param audio  whole sectors
void insertSoundDisc(SimulatedDrive& drive, const QByteArray& audio);

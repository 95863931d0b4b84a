#pragma once

#include <QBitArray>
#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QtGlobal>

/// Finds the dead sectors of a disc in a drive that delivers something for them all
/// the same: after long tries of its own, success and noise, another noise each time.
/// No vote comes to an end over such a sector, and each re-read costs those tries
/// once more, for every dead sector of the batch.
///
/// Suspicion takes five readings, each of them slow, noise to look at and unlike all the
/// others. A sector is above it for good once it has been delivered quickly, as music or
/// silence, without a C2 pointer where pointers are read, or alike twice: so the sound
/// sectors of a batch that is slow for others' sake are, those that are legible now and
/// then, and all of a drive that finds no place again to the sample.
class SlowNoise {
public:
    /// One command has delivered these sectors, and took the drive so long.
    ///
    /// @param c2Counts  bits of each sector; empty where pointers are not read
    /// @return          the sectors that this has shown to be dead
    QList<quint32> delivered(quint32 lba, const QByteArray& sectors, const QList<int>& c2Counts,
                             qint64 nanoseconds);

private:
    struct Suspect {
        quint32 lba = 0;
        QList<QByteArray> readings;
    };

    void cameQuickly(quint32 lba, QByteArrayView reading);
    bool isDead(quint32 lba, QByteArrayView reading);
    void clear(quint32 lba);
    QList<Suspect>::iterator find(quint32 lba);

    QList<Suspect> suspects; ///< in the order in which they were met
    QBitArray cleared;       ///< by sector
};

#pragma once

#include "support/DiscDamage.h"

#include <QHash>
#include <QList>
#include <QtGlobal>

/// The part of a simulated drive between its connector and the disc: the head,
/// the cache in front of it, what the damage makes of a reading, and the time
/// that all this takes on a virtual clock.
///
/// The cache is one run of neighbouring sectors: a read that goes on where the
/// last one ended extends it and pushes its oldest sectors out, and a read from
/// anywhere else on the disc drops it. While the host is idle the drive reads
/// ahead, so that a pause makes the following sectors free.
class SimulatedMechanism {
public:
    struct Reading {
        enum End { Whole, Unreadable, Hanging, Short };
        End end = Whole;
        QList<WrongPattern> patterns; ///< one for each sector that was delivered
    };

    /// Reads sectors as the head finds them, or from the cache.
    /// @param clock  nanoseconds; moved on
    Reading read(quint32 lba, quint32 count, qint64& clock);

    quint64 seed = 1;
    QList<SectorFault> faults;

    quint32 cacheSectors = 0;
    quint32 staleWithin = 0; ///< as the field of SectorFault, for all faults of the disc

    double speed = 0;         ///< in multiples of 75 sectors a second; 0: a transfer takes no time
    double speedOnDamage = 4; ///< where any fault lies, if there is a speed at all
    qint64 spinUpNanoseconds = 0;
    qint64 spinDownAfter = 0; ///< nanoseconds without a read of the disc; 0: it never stops
    qint64 seekNanoseconds = 0;
    qint64 strokeNanoseconds = 0; ///< in addition, for a seek over the whole of an 80-minute disc

    quint64 sectorsFromDisc = 0; ///< that the head has read

private:
    struct Remembered {
        WrongPattern pattern;
        quint32 staleWithin = 0;
    };

    bool isCached(quint32 lba) const { return lba >= cacheFirst && lba < cacheEnd; }
    Reading::End readFromDisc(quint32 lba, qint64& clock, WrongPattern& pattern);
    void moveHead(quint32 lba, qint64& clock);
    void transfer(quint32 lba, qint64& clock);
    Reading::End suffer(quint32 lba, qint64& clock, Remembered& answer);
    void forgetWhatIsFarFrom(quint32 lba);

    quint32 cacheFirst = 0;
    quint32 cacheEnd = 0;
    quint32 head = 0;      ///< the sector that comes by next
    bool spinning = false;
    bool streaming = false; ///< the head comes from the sector in front
    qint64 readyTime = 0;  ///< when the head had read the sector in front
    QHash<quint32, Remembered> answers; ///< of damaged sectors, in the cache or stale
    QHash<quint32, quint32> readings;   ///< of damaged sectors, so far
};

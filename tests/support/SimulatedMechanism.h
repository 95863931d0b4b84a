#pragma once

#include "support/DiscDamage.h"

#include <QHash>
#include <QList>
#include <QtGlobal>

/// The part of a simulated drive between its connector and the disc: the head,
/// the buffer in front of it, what the damage makes of a reading, and the time
/// that all this takes on a virtual clock.
///
/// The buffer has segments, each a ring over one run of neighbouring sectors. A
/// read that goes on where a run has ended extends it and pushes its oldest
/// sectors out; one a little further on is reached by reading on; a read from
/// anywhere else takes the segment that was used least recently. A sector in a
/// ring comes again as it was read, however often it is asked for. While the
/// host is idle the drive reads ahead, so that a pause makes the following
/// sectors free.
class SimulatedMechanism {
public:
    struct Reading {
        enum End { Whole, Unreadable, Hanging, Short };
        End end = Whole;
        QList<WrongPattern> patterns; ///< one for each sector that was delivered
    };

    /// Reads sectors as the head finds them, or from the buffer.
    /// @param clock  nanoseconds; moved on
    Reading read(quint32 lba, quint32 count, qint64& clock);

    quint64 seed = 1;
    QList<SectorFault> faults;

    quint32 cacheSectors = 0; ///< of the whole buffer
    int cacheSegments = 1;
    quint32 readAhead = 0;   ///< sectors behind a run's end that are reached by reading on
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

    struct Segment {
        quint32 first = 0;
        quint32 end = 0;
        quint64 lastUse = 0;

        bool holds(quint32 lba) const { return lba >= first && lba < end; }
    };

    bool isCached(quint32 lba) const;
    bool useCached(quint32 lba);
    void readOnTo(quint32 lba, qint64& clock);
    void keep(quint32 lba);
    Segment& segmentFor(quint32 lba);
    Reading::End readFromDisc(quint32 lba, qint64& clock, WrongPattern& pattern);
    void moveHead(quint32 lba, qint64& clock);
    void transfer(quint32 lba, qint64& clock);
    Reading::End suffer(quint32 lba, qint64& clock, Remembered& answer);
    void forgetWhatIsFarFrom(quint32 lba);

    QList<Segment> segments;
    quint64 uses = 0;
    quint32 head = 0; ///< the sector that comes by next
    bool spinning = false;
    bool streaming = false;             ///< the head comes from the sector in front
    qint64 readyTime = 0;               ///< when the head had read the sector in front
    QHash<quint32, Remembered> answers; ///< of damaged sectors, in the buffer or stale
    QHash<quint32, quint32> readings;   ///< of damaged sectors, so far
};

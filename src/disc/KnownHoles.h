#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QtGlobal>

/// Attempts that a drive gets at one batch before it is given up.
inline constexpr quint32 LADDER_ATTEMPTS = 35;

/// What has been learnt about the unreadable places of the disc in the drive: the
/// sectors that are not asked for again, and the stretches in which such sectors
/// lie somewhere. Forgotten when the drive is opened again: a person may have
/// wiped the disc.
class KnownHoles {
public:
    /// A batch of several sectors failed through a whole ladder. What it held is
    /// asked for sector by sector from now on.
    void batchGivenUp(quint32 lba, quint32 count);

    /// The drive called these sectors unreadable, or hung on them.
    void failed(quint32 lba, quint32 count);
    void delivered(quint32 lba, quint32 count);

    /// Whether this sector, asked for alone, has failed as often as a whole ladder
    /// asks. The attempts at a batch count for the first sector that failed it.
    bool isExhausted(quint32 lba) const;
    /// Not asked for again from now on.
    void add(quint32 lba);

    bool isHole(quint32 lba) const { return holes.contains(lba); }
    bool anyHole(quint32 lba, quint32 count) const;
    /// Whether a hole, or a stretch with one somewhere, lies among these sectors.
    bool anyTrouble(quint32 lba, quint32 count) const;

    /// How many sectors from this one on one command should ask for: one in a
    /// stretch that failed, else no more than up to the next trouble.
    quint32 boundedBatch(quint32 lba, quint32 count) const;

private:
    struct Stretch {
        quint32 first = 0; ///< moves on over sectors that have been settled
        quint32 end = 0;
        quint32 culprit = 0; ///< the first hole in it that refused; `end` as long as there is none
    };

    void settle(quint32 lba);

    QSet<quint32> holes;
    QList<Stretch> stretches;
    QHash<quint32, quint32> failures; ///< of sectors that were asked for alone
};

#pragma once

#include <QtGlobal>

#include <span>

/// What is wrong with a range of sectors, at the addresses under which a host
/// asks for them. What happens in one read depends on
/// the seed, the sector and how often it was read before, and on nothing else.
struct SectorFault {
    enum Kind {
        Wrong,      ///< bytes differ from the disc's, and the drive reports success
        Unreadable, ///< the command fails
        Hanging,    ///< the command lasts until its time limit and fails
        Short,      ///< the transfer ends before this sector
        Slow        ///< nothing but time
    };

    quint32 first = 0;
    quint32 last = 0; ///< inclusive
    Kind kind = Wrong;
    double probability = 1;  ///< of striking in one read
    int wrongBytes = 40;     ///< in a read that goes wrong; these exactly
    int variants = 0;        ///< how many different wrong answers there are; 0: each read has its own
    bool silent = false;     ///< C2 says nothing of it
    quint32 staleWithin = 0; ///< the answer comes again until the head has been this far away
    qint64 nanoseconds = 0;  ///< that the drive's own retries take in each read

    bool covers(quint32 lba) const { return lba >= first && lba <= last; }

    /// Wrong with a probability, differently in each read.
    static SectorFault flaky(quint32 first, quint32 last, double probability);
    /// Wrong in the same way in each read.
    static SectorFault sticky(quint32 first, quint32 last);
    /// As flaky, and C2 does not know of it.
    static SectorFault silentlyFlaky(quint32 first, quint32 last, double probability);
    /// As sticky, and C2 does not know of it.
    static SectorFault silentlySticky(quint32 first, quint32 last);
    /// As flaky, but the drive goes on to answer with what it has in its
    /// memory until the head has been `distance` sectors away.
    static SectorFault stale(quint32 first, quint32 last, double probability, quint32 distance);
    /// Fails after the drive has tried for a second by itself.
    static SectorFault unreadable(quint32 first, quint32 last, double probability = 1);
    /// Nothing legible: after a second of the drive's own retries, noise in every byte.
    static SectorFault deadSpot(quint32 first, quint32 last);
    static SectorFault hanging(quint32 first, quint32 last, double probability = 1);
    static SectorFault shortAnswer(quint32 first, quint32 last, double probability = 1);
    static SectorFault slow(quint32 first, quint32 last);
};

/// Numbers that depend on their arguments alone.
quint64 scramble(quint64 seed, quint64 subject, quint64 turn);
/// Whether something of this probability happens this time.
bool happens(double probability, quint64 number);

/// How the bytes of one reading of a sector differ from the disc's.
struct WrongPattern {
    quint64 key = 0;
    int wrongBytes = 0; ///< 0: the reading is right
    bool silent = false;

    /// Spoils exactly `wrongBytes` bytes.
    void spoil(std::span<quint8> sector) const;
    /// Calls back with the place of each spoilt byte.
    template<typename Callback>
    void forEachPlace(const Callback& place) const;
};

/// The pattern of the n-th reading of a sector under this fault.
WrongPattern patternOfReading(const SectorFault& fault, quint64 seed, quint32 lba, quint32 reading);

inline constexpr quint64 patternSectorBytes = 2352;

template<typename Callback>
void WrongPattern::forEachPlace(const Callback& place) const
{
    constexpr quint64 stride = 5; // no factor of the sector's size: places repeat after a whole round
    for (quint64 i = 0; i < static_cast<quint64>(wrongBytes); ++i)
        place(static_cast<size_t>((key + i * stride) % patternSectorBytes));
}

#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>
#include <QList>

class CdDrive;
class RunReport;

/// What a disc run goes by when it judges its sectors.
struct ReadMode {
    bool c2 = false; ///< one pass under the drive's error pointers; else two passes are compared
    int rereadLimit = 20;
    quint32 firstAudioLba = 0; ///< cross-checks are counted from here
};

/// Decides which bytes of a disc's sector to keep, and how far they are trusted.
class SectorJudge {
public:
    /// The drive and the report must outlive it. A stop ends its re-reads.
    SectorJudge(CdDrive& discDrive, const RunReport& runReport, const ReadMode& readMode)
        : drive(discDrive), report(runReport), mode(readMode)
    {
    }

    /// Judges what a pass read, and replaces it where re-reads know better.
    ///
    /// @param record  has the sector and its C2 errors; gets the verdict
    /// @param first   what the first pass read; not looked at in C2 mode
    void judge(SectorResult& record, const QByteArray& first, QByteArray& data) const;

private:
    bool isTrusted(const SectorResult& record, const QByteArray& first, const QByteArray& data) const;
    /// Reads a sector again that the drive called clean; false when it came back
    /// different. Two fresh reads outvote the data.
    bool passesCrossCheck(quint32 lba, QByteArray& data) const;
    void reread(SectorResult& record, const QList<QByteArray>& seeds, QByteArray& data) const;

    CdDrive& drive;
    const RunReport& report;
    const ReadMode mode;
};

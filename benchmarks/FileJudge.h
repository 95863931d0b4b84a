#pragma once

#include "DiscRip.h"
#include "support/SimulatedDrive.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QtGlobal>

/// What a ripper said of a sector that it read. Ordered: of several reads in one
/// sector of a file the highest one counts.
enum class Verdict { Unconfirmed, Recovered, Borrowed, Good };

/// Counts the sectors of a rip's files that are not what the disc holds, by what was
/// said of the reads that they come from.
class FileJudge {
public:
    /// @param said  of each read; a sector that is not there passes for good
    FileJudge(const SimulatedDrive& judgedDrive, const QHash<quint32, Verdict>& said)
        : drive(judgedDrive), verdicts(said)
    {
    }

    /// @param first    the file's first sector on the disc
    /// @param samples  of the file, the read offset corrected; whole sectors
    /// @return false for a file of another length
    bool judge(quint32 first, quint32 last, const QByteArray& samples);
    /// Sectors of the files so far, and of the reads that no file got wrong.
    DiscRipOutcome result() const;

private:
    void judgeSector(quint32 first, quint32 last, quint32 lba, const char* held);
    Verdict verdictOfFrame(quint32 first, quint32 last, qint64 frame);

    const SimulatedDrive& drive;
    const QHash<quint32, Verdict>& verdicts;
    QSet<quint32> wrongReads;
    DiscRipOutcome outcome;
};

/// The samples of a WAVE file; empty when there are none.
QByteArray samplesOfWave(const QString& path);

#pragma once

#include "rip/AudioArea.h"
#include "rip/RipTypes.h"
#include "rip/SectorJudge.h"

#include <QByteArray>
#include <QList>

class CdDrive;
struct RipOrder;
class RunReport;
class TrackWriter;

/// The run over a physical disc, one file for each audio track. Made for one run.
class DiscRun {
public:
    /// All three must outlive it; the order has a drive and tracks.
    DiscRun(const RipOrder& runOrder, TrackWriter& trackWriter, RunReport& runReport);

    void run();

private:
    /// Asks the drive what it can do, and says how the disc will be read.
    void chooseReadMode();
    void ripTrack(qsizetype place);
    /// The last sector of a track that is no other track's.
    quint32 lastSectorOf(qsizetype place) const;
    /// Reads a track by the passes of the mode, and counts what was doubtful. False
    /// when the run was stopped.
    bool readSamples(qsizetype place, quint32 sectors, QList<int>& samples, RipResult& result);
    QList<QByteArray> readFirstPass(quint32 firstLba, quint32 sectors);
    /// The verdict on what was just read, which is replaced where re-reads know better.
    SectorResult judged(quint32 lba, const QByteArray& first, QByteArray& data);
    /// Touches a USB drive now and then, so that it does not fall asleep.
    void keepAlive(quint32 lba);

    const RipOrder& order;
    CdDrive& drive;
    TrackWriter& writer;
    RunReport& report;
    const AudioArea audio;
    bool usb = false;
    ReadMode mode;
    int mismatches = 0;
};

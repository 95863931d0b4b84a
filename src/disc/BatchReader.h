#pragma once

#include "disc/ColdReads.h"
#include "disc/DriveAbsence.h"
#include "disc/SectorBatch.h"
#include "disc/SlowNoise.h"

#include <optional>

/// Reads batches from a drive with a ladder of attempts: at once, after seeks, after
/// pauses. What is learnt on it of the disc's holes goes to ColdReads.
class BatchReader {
public:
    /// @param drive  lives longer than this
    explicit BatchReader(ColdReads& drive) : device(drive) {}

    void setC2Enabled(bool on) { withC2 = on; }
    bool c2Enabled() const { return withC2; }

    /// Reads so many sectors or, where that fails, the first alone.
    ///
    /// @param started  now, in nanoseconds
    /// @param batch    takes what came; left alone where nothing did
    /// @return         attempts that failed before; none where all did
    std::optional<quint32> read(quint32 lba, quint32 count, qint64 started, SectorBatch& batch);

    /// When the last batch had come, in nanoseconds.
    qint64 finishedAt() const { return finished; }

private:
    std::optional<quint32> climbLadder(quint32 lba, quint32 count, qint64 started, SectorBatch& batch);
    bool readAlone(quint32 lba, quint32 failedBatch, SectorBatch& batch);
    bool attempt(quint32 lba, quint32 count, qint64 started, SectorBatch& batch);
    void seekNear(quint32 lba);

    ColdReads& device;
    SlowNoise slowNoise;
    DriveAbsence absence;
    bool withC2 = false;
    qint64 finished = 0;
};

#pragma once

#include "disc/CdDrive.h"
#include "disc/DiscModel.h"

#include <QObject>

#include <functional>

/// Reads a track sector by sector and decides for each which bytes to keep.
/// Image tracks are read once; others twice, and where the reads differ, further
/// reads vote. Everything runs on the calling thread, the callbacks too.
class ParanoiaReader : public QObject {
public:
    explicit ParanoiaReader(QObject* parent = nullptr);

    /// All sectors of the track as interleaved 16-bit values, with the drive's
    /// read offset applied. Empty when aborted. An unreadable sector is silence.
    QList<qint16> readTrack(CdDrive& drive, const TrackInfo& track);
    /// As above, each value shifted left by 16 with its sign kept, in place of what
    /// the list holds and in its memory where that is enough.
    void readTrack(CdDrive& drive, const TrackInfo& track, QList<int>& samples);

    /// One sector by double read and vote; fills the record.
    QByteArray readSectorVerified(CdDrive& drive, quint32 lba, SectorResult& record);

    std::function<void(const SectorResult&)> onSector;
    std::function<void(int trackNumber, int sectorIndex, int sectorCount)> onProgress;
    bool abortFlag = false;      ///< ends a read before its next sector
    bool forceVerify = false;    ///< double reads for tracks that come from a file too
    int maxReads = 20;           ///< reads of one sector at most, the first two included
    QList<SectorResult> results; ///< one record a sector of the last readTrack

private:
    template<typename Value>
    void readInto(QList<Value>& samples, CdDrive& drive, const TrackInfo& track);
    QByteArray readSectorDirect(CdDrive& drive, quint32 lba, SectorResult& record);
};

/// Applies the drive's read offset to one image track, in 16-bit values (not
/// stereo frames), and fills the gap with silence. A disc rip shifts by frames
/// and borrows from the neighbouring track instead: RipWorker::applyReadOffset.
///
/// @param samples  interleaved left/right; its length never changes
/// @param offset   positive drops values in front; ignored when its magnitude
///                 is not below the length
void shiftWithSilence(QList<qint16>& samples, int offset);
void shiftWithSilence(QList<int>& samples, int offset);

#pragma once

#include "disc/ColdReads.h"
#include "disc/DiscModel.h"
#include "disc/SlowNoise.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>

/// The one object through which a disc is read: a physical drive or a CUE image.
///
/// Every read returns exactly RAW_SECTOR_BYTES bytes, or an empty array for a
/// failure. Nothing throws. No lock is held: one thread uses it at a time, and
/// while a rip has borrowed it, that is the rip's.
class CdDrive {
public:
    CdDrive();
    ~CdDrive();
    CdDrive(const CdDrive&) = delete;
    CdDrive& operator=(const CdDrive&) = delete;

    /// Letter texts of the optical drives, in order.
    static QStringList enumerateDrives();

    /// Opens a physical drive by its letter text; closes what was open.
    bool open(const QString& letter);
    /// Parses the sheet and opens the first track's file; closes what was open.
    bool openCue(const QString& path);
    /// On a borrowed drive this takes effect when the drive is given back.
    void close();

    /// Between these two, open and openCue of any thread fail, and so does a
    /// second borrowing: who gets false has no drive, and has none to give back.
    [[nodiscard]] bool borrow();
    void giveBack();
    bool isBorrowed() const { return lease != Lease::none; }

    /// Parses a CUE sheet; needs no drive. A sheet that yields nothing has no tracks.
    static DiscToc parseCue(const QString& path);

    DiscToc readToc();
    /// Why the last table of contents of a physical drive did not come.
    DriveFailure tocFailure() const { return failureOfLastToc; }
    QByteArray readSector(quint32 lba);
    /// As readSector, for samples that no other reading is held against: what the
    /// drive remembers will do.
    QByteArray readSectorUnjudged(quint32 lba);
    /// For a re-read: moves the head away first, so that the drive's cache is left behind.
    QByteArray readSectorFresh(quint32 lba);
    /// Makes a physical drive leave its cache by far reads; nothing on an image.
    void flushDriveCache(quint32 lba);

    /// Whether READ CD delivers believable C2 pointers at this sector.
    bool probeC2(quint32 lba);
    void setC2Enabled(bool on);
    bool isUsb();
    /// "Vendor - Product", or less where the drive tells less; empty for an image.
    QString queryModel();

    bool isImage() const { return image; }
    QString name() const { return driveName; }
    int readOffset() const { return offsetSamples; }
    void setReadOffset(int samples) { offsetSamples = samples; }
    quint32 lastRetries() const { return retriesOfLastRead; } ///< failed attempts before the last batch
    quint32 lastC2Errors() const { return c2OfLastRead; }
    quint32 speedKBs() const { return speed; } ///< average since the first batch, KiB/s
    bool c2Enabled() const { return c2On; }

private:
    enum class Lease { none, borrowed, closeOnReturn };
    /// Whether a reading may be held against another one of the same sector.
    enum class Purpose { judged, unjudged };

    void release();
    QByteArray readImageSector(quint32 lba);
    void loadImagePiece(qint64 position);
    QByteArray readPhysicalSector(quint32 lba, Purpose purpose);
    QByteArray readFromAfar(quint32 lba, ColdReads::Effort effort);
    bool isCached(quint32 lba) const;
    QByteArray cachedSector(quint32 lba) const;
    QByteArray readBatch(quint32 lba, Purpose purpose);
    bool climbLadder(quint32 lba, quint32 count, qint64 started);
    bool readAlone(quint32 lba, quint32 failedBatch);
    bool isAway() const;
    void noteAbsence(bool absent);
    bool attemptBatch(quint32 lba, quint32 count, qint64 started);
    void seekNear(quint32 lba);
    bool answersProbe(quint32 lba, quint32 count, QList<int>& c2Counts);
    bool readRawC2(quint32 lba, quint32 count, QByteArray& data, QList<int>& c2Counts);
    quint32 boundedBatch(quint32 lba) const;
    void updateSpeed(qint64 started, qint64 now);
    void emptyCache();

    static constexpr quint32 noBatch = 0xFFFFFFFF;

    std::atomic<Lease> lease = Lease::none;
    std::unique_ptr<ColdReads> device;
    DiscToc imageDisc;
    QFile imageFile;
    QByteArray imagePiece; ///< bytes of the image file around the last read
    qint64 imagePieceStart = 0;
    bool image = false;
    QString driveName;
    int offsetSamples = 0;

    QByteArray batchCache;
    quint32 batchStartLba = noBatch;
    quint32 batchCount = 0;
    QList<int> batchC2Counts;
    qint64 batchTime = 0; ///< when it had come
    SlowNoise slowNoise;

    bool c2Supported = false;
    bool c2On = false;
    quint32 sectorLimit = 0;    ///< lead-out; 0 means no bound
    QList<quint32> batchBounds; ///< no batch passes one of these from below

    quint64 bytesRead = 0;
    qint64 firstReadTime = 0;
    bool timingStarted = false;
    quint32 retriesOfLastRead = 0;
    quint32 c2OfLastRead = 0;
    quint32 speed = 0;
    quint32 lastFreshLba = noBatch;
    DriveReply lastReply;
    std::optional<qint64> awaySince;
    DriveFailure failureOfLastToc = DriveFailure::unknown;
};

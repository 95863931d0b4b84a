#pragma once

#include "disc/DiscModel.h"
#include "disc/SectorSource.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>

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
    bool isOpen() const { return source && source->isOpen(); }

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
    quint32 lastRetries() const { return figures.retries; } ///< failed attempts before the last batch
    quint32 lastC2Errors() const { return figures.c2Errors; }
    quint32 speedKBs() const { return figures.speedKBs; } ///< average since the first batch, KiB/s
    bool c2Enabled() const;

private:
    enum class Lease { none, borrowed, closeOnReturn };

    void release();
    void takeFigures();

    std::atomic<Lease> lease = Lease::none;
    std::unique_ptr<SectorSource> source; ///< null when closed
    bool image = false;
    QString driveName;
    int offsetSamples = 0;
    ReadFigures figures; ///< of the last read from a drive
    DriveFailure failureOfLastToc = DriveFailure::unknown;
};

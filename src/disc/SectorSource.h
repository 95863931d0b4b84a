#pragma once

#include "disc/DiscModel.h"
#include "disc/DriveDevice.h"

#include <QByteArray>
#include <QString>

/// What a drive says of its last read.
struct ReadFigures {
    quint32 retries = 0;  ///< failed attempts before the last batch
    quint32 c2Errors = 0; ///< C2 bits of the sector last returned
    quint32 speedKBs = 0; ///< average since the first batch, KiB/s
};

/// Whether a reading may be held against another one of the same sector.
enum class ReadPurpose { judged, unjudged };

/// Where CdDrive has its sectors from: a drive or an image. A read returns exactly
/// RAW_SECTOR_BYTES bytes, or an empty array for a failure.
class SectorSource {
public:
    virtual ~SectorSource() = default;

    /// False for an image whose sheet or file did not open.
    virtual bool isOpen() const = 0;
    /// @param failure  why there is none; left alone by a source that cannot say
    virtual DiscToc readToc(DriveFailure& failure) = 0;
    virtual QByteArray readSector(quint32 lba, ReadPurpose purpose) = 0;
    /// For a re-read: from the disc, whatever a drive remembers.
    virtual QByteArray readSectorFresh(quint32 lba) = 0;
    virtual void flushCache(quint32 lba) = 0;

    virtual bool probeC2(quint32 lba) = 0;
    virtual void setC2Enabled(bool on) = 0;
    virtual bool c2Enabled() const = 0;

    virtual bool isUsb() = 0;
    virtual QString queryModel() = 0;
    /// Null where reads have no figures.
    virtual const ReadFigures* figures() const = 0;
};

#pragma once

#include "disc/BatchReader.h"
#include "disc/ColdReads.h"
#include "disc/DiscBounds.h"
#include "disc/ReadSpeed.h"
#include "disc/SectorSource.h"

#include <memory>
#include <utility>

/// A disc in an open drive, read in batches of which the last one is kept.
class PhysicalDrive : public SectorSource {
public:
    /// @param opened  not null
    explicit PhysicalDrive(std::unique_ptr<DriveDevice> opened) : device(std::move(opened)) {}
    PhysicalDrive(const PhysicalDrive&) = delete;
    PhysicalDrive& operator=(const PhysicalDrive&) = delete;

    bool isOpen() const override { return true; }
    DiscToc readToc(DriveFailure& failure) override;
    QByteArray readSector(quint32 lba, ReadPurpose purpose) override;
    QByteArray readSectorFresh(quint32 lba) override;
    void flushCache(quint32 lba) override;

    bool probeC2(quint32 lba) override;
    void setC2Enabled(bool on) override;
    bool c2Enabled() const override { return reader.c2Enabled(); }

    bool isUsb() override;
    QString queryModel() override;
    const ReadFigures* figures() const override { return &lastFigures; }

private:
    QByteArray readFromAfar(quint32 lba, ColdReads::Effort effort);
    QByteArray readBatch(quint32 lba, ReadPurpose purpose);
    quint32 boundedBatch(quint32 lba) const;

    static constexpr quint32 noSector = 0xFFFFFFFF;

    ColdReads device;
    BatchReader reader{device};
    DiscBounds bounds;
    SectorBatch batch;
    ReadSpeed speed;
    ReadFigures lastFigures;
    bool c2Supported = false;
    quint32 lastFreshLba = noSector;
};

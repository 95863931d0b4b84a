#pragma once

#include "disc/SectorSource.h"

#include <QFile>

/// A CUE image: the file of its first track, read in pieces of some sectors.
class ImageSource : public SectorSource {
public:
    /// Parses the sheet and opens the file; what failed is in the debug log.
    explicit ImageSource(const QString& sheetPath);

    bool isOpen() const override { return file.isOpen(); }
    DiscToc readToc(DriveFailure&) override { return disc; }
    QByteArray readSector(quint32 lba, ReadPurpose purpose) override;
    QByteArray readSectorFresh(quint32 lba) override { return readSector(lba, ReadPurpose::judged); }
    void flushCache(quint32) override {}

    bool probeC2(quint32) override { return false; }
    void setC2Enabled(bool) override {}
    bool c2Enabled() const override { return false; }

    bool isUsb() override { return false; }
    QString queryModel() override { return {}; }
    const ReadFigures* figures() const override { return nullptr; }

private:
    void loadPiece(qint64 position);
    bool holds(qint64 position) const;

    DiscToc disc;
    QFile file;
    QByteArray piece; ///< bytes of the file around the last read
    qint64 pieceStart = 0;
    QByteArray sector; ///< given out; its memory serves again once nobody else holds it
};

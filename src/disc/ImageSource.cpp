#include "disc/ImageSource.h"

#include "disc/CueDisc.h"
#include "disc/RegularFile.h"

#include <QDebug>

#include <algorithm>

namespace {

constexpr qint64 pieceBytes = 32 * RAW_SECTOR_BYTES; // a system call each

} // namespace

ImageSource::ImageSource(const QString& sheetPath) : disc(readCueDisc(sheetPath))
{
    if (disc.tracks.isEmpty()) {
        qWarning().noquote() << "CdDrive: cue parse failed:" << sheetPath;
        return;
    }
    const QString source = disc.tracks.constFirst().sourceFile;
    if (!openRegular(file, source, QIODevice::ReadOnly | QIODevice::Unbuffered))
        qWarning().noquote() << "CdDrive: cannot open bin:" << source;
}

QByteArray ImageSource::readSector(quint32 lba, ReadPurpose)
{
    const auto position = static_cast<qint64>(quint64{lba} * RAW_SECTOR_BYTES + disc.imageDataOffset);
    if (!holds(position))
        loadPiece(position);
    if (!holds(position))
        return {};
    sector.resize(RAW_SECTOR_BYTES);
    std::copy_n(piece.constData() + (position - pieceStart), RAW_SECTOR_BYTES, sector.data());
    return sector;
}

bool ImageSource::holds(qint64 position) const
{
    return position >= pieceStart && position + RAW_SECTOR_BYTES <= pieceStart + piece.size();
}

void ImageSource::loadPiece(qint64 position)
{
    piece.resize(pieceBytes);
    const bool there = file.isOpen() && file.seek(position);
    piece.truncate(there ? std::max<qint64>(file.read(piece.data(), pieceBytes), 0) : 0);
    pieceStart = position;
}

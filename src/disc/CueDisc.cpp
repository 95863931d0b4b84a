#include "disc/CueDisc.h"

#include "base/ByteOrder.h"
#include "disc/CueSheet.h"
#include "disc/RegularFile.h"

namespace {

// A sheet of ten thousand tracks stays below 2 MiB; an endless file must end.
constexpr qint64 maxSheetBytes = 16 * 1024 * 1024;
constexpr int maxRiffChunks = 1 << 20;

QByteArray readSheet(const QString& path)
{
    QFile file;
    if (!openRegular(file, path))
        return {};
    const QByteArray bytes = file.read(maxSheetBytes + 1);
    return bytes.size() > maxSheetBytes ? QByteArray() : bytes;
}

// Chunks are walked without the pad byte behind odd sizes.
quint64 waveDataOffset(const QString& path)
{
    QFile file;
    if (!openRegular(file, path))
        return 0;
    const QByteArray head = file.read(12);
    if (head.size() < 12 || !head.startsWith("RIFF") || head.mid(8) != "WAVE")
        return 0;
    for (int chunk = 0; chunk < maxRiffChunks && !file.atEnd(); ++chunk) {
        const QByteArray identifier = file.read(4);
        const QByteArray size = file.read(4);
        if (size.size() < 4)
            return 0;
        if (identifier == "data")
            return static_cast<quint64>(file.pos());
        if (!file.seek(file.pos() + byteorder::readLittle<quint32>(size.constData())))
            return 0;
    }
    return 0;
}

// A track that starts inside the file ends with the file's last whole sector;
// one that starts behind it is as long as the file and holds silence.
quint32 lastTrackEnd(quint32 startLba, quint64 fileSize, quint64 dataOffset)
{
    const quint64 bytes = fileSize > dataOffset ? fileSize - dataOffset : 0;
    const auto sectors = static_cast<quint32>(bytes / RAW_SECTOR_BYTES);
    return startLba < sectors ? sectors - 1 : startLba - 1 + sectors;
}

void buildTracks(DiscToc& disc, const QList<CueEntry>& entries)
{
    disc.tracks.reserve(entries.size());
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const CueEntry& entry = entries[i];
        TrackInfo track;
        track.number = entry.number;
        track.title = entry.title;
        track.sourceFile = entry.file;
        track.sourceIsAudioFile = entry.isWave;
        track.startLba = entry.index01;
        track.endLba = i > 0 ? disc.tracks.constLast().endLba : 0;
        if (i + 1 < entries.size()) {
            track.endLba = entries[i + 1].index01 - 1;
        } else if (QFile file; openRegular(file, entry.file)) {
            track.endLba =
                lastTrackEnd(track.startLba, static_cast<quint64>(file.size()), disc.imageDataOffset);
        }
        track.seconds = trackSeconds(track.startLba, track.endLba);
        disc.tracks.append(track);
    }
    if (!disc.tracks.isEmpty())
        disc.totalSectors = disc.tracks.constLast().endLba + 1;
}

} // namespace

DiscToc readCueDisc(const QString& path)
{
    DiscToc disc;
    disc.isImage = true;
    const CueSheet sheet = scanCueSheet(decodeCueText(readSheet(path)), QFileInfo(path).absolutePath());
    disc.albumTitle = sheet.albumTitle;
    disc.albumArtist = sheet.albumArtist;
    disc.albumYear = sheet.albumYear;
    if (!sheet.entries.isEmpty() && sheet.entries.constFirst().isWave)
        disc.imageDataOffset = waveDataOffset(sheet.entries.constFirst().file);
    buildTracks(disc, sheet.entries);
    return disc;
}

#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// The rip's own format numbers. Any other number counts as WAV.
enum OutputFormat : int {
    OutputFlac = 0,
    OutputWav = 1,
    OutputMp3 = 2,
    OutputAac = 3,
    OutputAlac = 4,
};

/// errorSectors of a track that yielded no samples at all.
inline constexpr quint32 noSamplesRead = 0xFFFFFFFF;

/// The record of one finished track.
struct RipResult {
    int trackNumber = 0;
    QString title;
    bool ok = false;            ///< the file was written, whole
    quint32 errorSectors = 0;   ///< disc: unconfirmed or failing a cross-check; image: bad
    quint32 suspectSectors = 0; ///< disc: recovered by re-reads; image: sum of the re-reads
    quint32 crcV1 = 0;          ///< AccurateRip checksums; 0 without samples
    quint32 crcV2 = 0;
    QList<quint32> frameWindow; ///< disc only: frames of sectors 440 to 461, left in the low half
};

/// The record of a track that yielded no samples, or no file.
inline RipResult failedTrack(int number, const QString& title)
{
    RipResult result;
    result.trackNumber = number;
    result.title = title;
    result.errorSectors = noSamplesRead;
    return result;
}

Q_DECLARE_METATYPE(RipResult)

#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

/// The vocabulary of an audio disc. Audio is 44100 Hz, two channels, 16 bits,
/// little endian, left first. A sector lasts 1/75 s.

inline constexpr int RAW_SECTOR_BYTES = 2352; ///< audio bytes in a sector: 588 stereo frames
inline constexpr int C2_BLOCK_BYTES = 294;    ///< C2 error pointers of a sector, one bit a byte
inline constexpr int RAW_PLUS_C2_BYTES = RAW_SECTOR_BYTES + C2_BLOCK_BYTES;
inline constexpr int READ_BATCH_SECTORS = 27;              ///< sectors in one read command
inline constexpr int SECTOR_VALUES = RAW_SECTOR_BYTES / 2; ///< 16-bit values in a sector
inline constexpr int SECTORS_PER_SECOND = 75;
inline constexpr int LEAD_IN_SECTORS = 150; ///< offset of a drive's addresses

/// One track, in the order of the disc. Sector numbers are inclusive.
struct TrackInfo {
    int number = 0;
    QString title;
    quint32 startLba = 0;
    quint32 endLba = 0;
    int seconds = 0;
    QString sourceFile;             ///< holds the samples; empty on a physical disc
    bool sourceIsAudioFile = false; ///< an audio file rather than a raw image
    bool isData = false;

    bool operator==(const TrackInfo&) const = default;
};

/// The disc in hand. No tracks is the one sign of a failed read or parse.
struct DiscToc {
    QString spareText;
    QString albumTitle;
    QString albumArtist;
    QString albumYear;
    QList<TrackInfo> tracks;
    quint32 totalSectors = 0; ///< lead-out, or one past the last sector of an image
    bool isImage = false;
    quint64 imageDataOffset = 0; ///< byte position of sector 0 in the image file
};

/// The verdict on one sector. Neither bad nor clean: re-reads confirmed it.
struct SectorResult {
    quint32 lba = 0;
    qint32 retries = 0;    ///< re-reads spent
    bool bad = false;      ///< not trusted
    bool clean = false;    ///< trusted without a re-read
    quint32 speed = 0;     ///< KiB a second at this moment; 0 for an image
    bool mismatch = false; ///< the cross-check failed here
    quint32 c2Errors = 0;  ///< C2 bits of the read
};

/// Sectors from first to last, inclusive, as whole seconds. 32-bit signed
/// arithmetic, so a track whose end lies before its start counts too.
constexpr int trackSeconds(quint32 startLba, quint32 endLba)
{
    return static_cast<qint32>(endLba - startLba + 1) / SECTORS_PER_SECOND;
}

Q_DECLARE_METATYPE(TrackInfo)
Q_DECLARE_METATYPE(SectorResult)

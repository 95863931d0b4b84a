#pragma once

#include <QPixmap>
#include <QString>

/// What the pages hand to each other through the frame.

/// Where the audio is to come from. The audio file wins over the sheet, and the
/// sheet over the drive, whatever the order in which they were chosen.
struct ChosenSource {
    QString driveLetter;
    QString cuePath;
    QString audioPath;

    bool isAudioFile() const { return !audioPath.isEmpty(); }
    bool isSheet() const { return !isAudioFile() && !cuePath.isEmpty(); }
    bool isDrive() const { return !isAudioFile() && !isSheet() && !driveLetter.isEmpty(); }
};

/// The album as the user left it.
struct AlbumFields {
    QString title;
    QString artist;
    QString year;
    int discNumber = 1;
    int discTotal = 1;
    QPixmap cover; ///< full size; null for none
};

/// A track as the tables show it.
struct TrackRow {
    QString number;
    QString title;
    bool operator==(const TrackRow&) const = default;
};

/// What the pages before it ask of a rip.
struct RipRequest {
    ChosenSource source;
    QString outputFolder;
    QString format; ///< "flac", "wav" or "mp3"
    AlbumFields album;
};

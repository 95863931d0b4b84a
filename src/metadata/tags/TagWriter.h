#pragma once

#include <QPixmap>
#include <QString>

/// The values written into one finished file.
struct TagData {
    QString title;
    QString artist;
    QString album;
    QString year;        ///< release date; its first four characters are used
    QString label;       ///< publisher; not written to M4A
    int trackNumber = 0; ///< this and the three below are written only above 0
    int trackTotal = 0;
    int discNumber = 0; ///< 0: no disc value at all is written
    int discTotal = 0;
    QPixmap cover; ///< embedded as JPEG; null leaves earlier pictures
};

/// Words of the last failure of writeTags on this thread; never cleared.
extern thread_local QString lastTagError;

/// Writes the tags by the file's suffix: mp3, wav and m4a; anything else is
/// taken for FLAC. False when the file could not be opened or saved; the words
/// then stand in lastTagError. Nothing throws.
/// @param coverLeftOut  if not null, set to whether a cover was given that the
///                      format cannot hold; all else is written then
bool writeTags(const QString& path, const TagData& tags, bool* coverLeftOut = nullptr);

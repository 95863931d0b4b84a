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

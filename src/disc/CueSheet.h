#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// One TRACK line of a sheet with what belongs to it, in the sheet's order.
struct CueEntry {
    int number = 0;
    QString file;        ///< absolute path of the FILE line in force
    bool isWave = false; ///< that FILE line said WAVE
    quint32 index01 = 0; ///< sector of INDEX 01 from the start of the file
    QString title;
};

/// What a sheet says, before any audio file is looked at.
struct CueSheet {
    QString albumTitle;
    QString albumArtist;
    QString albumYear;
    QList<CueEntry> entries;
};

/// Text of a sheet: UTF-8 or little-endian UTF-16 by its mark, else UTF-8, else the
/// system's local code page. UTF-16 ends at a NUL.
QString decodeCueText(const QByteArray& bytes);

/// Scans a sheet line by line for six keywords and skips whatever else it holds.
///
/// @param directory  of the sheet; FILE names are joined to it
CueSheet scanCueSheet(const QString& text, const QString& directory);

#pragma once

#include <QString>

struct TrackInfo;

/// Where the album's cover goes, below the output folder.
inline constexpr char coverFileName[] = "/cover.jpg";

/// What a track is called where it has no title.
QString trackName(const TrackInfo& track);

/// Takes out what no file name may hold on any common system: \ / : * ? " < > |
QString withoutForbiddenCharacters(QString text);

/// The text without forbidden characters, and without blanks and full stops at
/// its end.
QString cleanNamePart(const QString& text);

/// What a file system takes as one name.
inline constexpr qsizetype mostNameBytes = 255;

/// As much of a name, in whole characters, as fits into so many bytes.
QString fittingName(QString name, qsizetype bytes = mostNameBytes);

/// The path with its extension appended, the file name cut to what the file
/// system takes; the extension is kept.
QString fittingPath(const QString& basePath, const QString& extension);

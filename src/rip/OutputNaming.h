#pragma once

#include <QString>

/// Where the album's cover goes, below the output folder.
inline constexpr char coverFileName[] = "/cover.jpg";

/// Takes out what no file name may hold on any common system: \ / : * ? " < > |
QString withoutForbiddenCharacters(QString text);

/// The text without forbidden characters, and without blanks and full stops at
/// its end.
QString cleanNamePart(const QString& text);

/// The path with its extension appended, the file name cut at a whole character
/// to what the file system takes (255 bytes, the extension kept).
QString fittingPath(const QString& basePath, const QString& extension);

#pragma once

#include <QString>

/// What a file system takes as one name.
inline constexpr qsizetype mostNameBytes = 255;

/// As much of a name, in whole characters, as fits into so many bytes.
QString fittingName(QString name, qsizetype bytes = mostNameBytes);

/// The path with its extension appended, the file name cut to what the file
/// system takes; the extension is kept.
QString fittingPath(const QString& basePath, const QString& extension);

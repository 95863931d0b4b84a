#pragma once

#include <QString>

/// As much of a name, in whole characters, as the file system takes, and nothing
/// that the platform would take for something else.
QString fittingName(const QString& name);

/// The path with its extension appended, the file name cut to what the file
/// system takes; the extension is kept.
QString fittingPath(const QString& basePath, const QString& extension);

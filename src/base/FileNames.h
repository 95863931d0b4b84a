#pragma once

#include <QString>

/// What the platform's file systems take as one name, in the units of nameLength.
inline constexpr qsizetype mostNameLength = 255;

/// The length of a name: UTF-16 units on Windows, bytes elsewhere.
qsizetype nameLength(const QString& name);

/// The name changed where the platform would take it for something else: on
/// Windows a device's name whatever its extension, control characters, and dots
/// and blanks at the end.
QString harmlessName(QString name);

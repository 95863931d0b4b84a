#pragma once

#include <QtGlobal>

/// How long a guarded read of sectors may take; a platform may wait longer where its
/// system leaves it no choice.
inline constexpr int driveTimeOutMs = 3000;

/// Writes the warning about a read that was cancelled; it names the time-out,
/// whatever the time really was.
void logUnresponsiveSector(quint32 lba);

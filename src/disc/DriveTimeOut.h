#pragma once

#include <QtGlobal>

/// How long a read of sectors may take, on every platform.
inline constexpr int driveTimeOutMs = 3000;

/// Writes the warning about a read that was cancelled; it names the time-out,
/// whatever the time really was.
void logUnresponsiveSector(quint32 lba);

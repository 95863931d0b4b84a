#pragma once

#include <QtGlobal>

/// Goes three times over the samples of so many tracks, as a rip that holds a track as
/// 32-bit values has to: they are widened from 16 bits into a list that the tracks
/// share, then cut to 16 bits again, then summed. What the values come from and
/// are cut into stays in the cache. Prints the processor seconds that this took.
///
/// @param trackBytes  of a track's 16-bit values
int passOverMemory(int tracks, qint64 trackBytes);

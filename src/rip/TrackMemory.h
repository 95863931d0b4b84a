#pragma once

#include "base/PhysicalMemory.h"
#include "disc/DiscModel.h"

/// The bytes that the audio of one track may take. The system promises memory
/// that it does not have, and ends the process that takes it, so a track beyond
/// this has to be given up before.
inline quint64 trackMemoryBytes()
{
    return physicalMemoryBytes() / 4 * 3;
}

/// Whether a track of sectors can be held, each of its values in so many bytes.
inline bool memoryHoldsSectors(quint64 sectors, quint64 bytesOfValue)
{
    return sectors <= trackMemoryBytes() / (SECTOR_VALUES * bytesOfValue);
}

#include "base/PhysicalMemory.h"

#include <atomic>
#include <limits>

static std::atomic<quint64> pretended = 0;

quint64 physicalMemoryBytes()
{
    if (const quint64 bytes = pretended; bytes != 0)
        return bytes;
    const quint64 told = askForPhysicalMemory();
    return told != 0 ? told : std::numeric_limits<quint64>::max();
}

void pretendPhysicalMemory(quint64 bytes)
{
    pretended = bytes;
}

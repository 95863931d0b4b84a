#include "support/PeakMemory.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>

static PROCESS_MEMORY_COUNTERS counters()
{
    PROCESS_MEMORY_COUNTERS told{};
    GetProcessMemoryInfo(GetCurrentProcess(), &told, sizeof told);
    return told;
}

// The peak of earlier work stays: it hides what comes after it.
PeakMemory::PeakMemory()
{
    const PROCESS_MEMORY_COUNTERS told = counters();
    start = static_cast<qint64>(told.WorkingSetSize);
    usable = start > 0;
}

qint64 PeakMemory::growth() const
{
    const auto peak = static_cast<qint64>(counters().PeakWorkingSetSize);
    return usable ? std::max<qint64>(0, peak - start) : -1;
}

#include "base/PhysicalMemory.h"

#include <windows.h>

quint64 askForPhysicalMemory()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

#include "base/PhysicalMemory.h"

#include <unistd.h>

quint64 askForPhysicalMemory()
{
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageBytes > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(pageBytes) : 0;
}

#include "support/OpenFiles.h"

#include <windows.h>

// Handles are multiples of four, and the lowest free one is taken.
qsizetype openFileCount()
{
    constexpr quintptr highest = 4 * 4096;
    qsizetype count = 0;
    for (quintptr number = 4; number <= highest; number += 4)
        count += GetFileType(reinterpret_cast<HANDLE>(number)) == FILE_TYPE_DISK ? 1 : 0;
    return count;
}

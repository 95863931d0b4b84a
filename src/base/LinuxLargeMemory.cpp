#include "base/LargeMemory.h"

#include <sys/mman.h>

#include <cstdint>

void preferLargePages(void* memory, std::size_t bytes)
{
    constexpr std::uintptr_t page = 4096;
    const auto start = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) & ~(page - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) & ~(page - 1);
    if (start < end)
        madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

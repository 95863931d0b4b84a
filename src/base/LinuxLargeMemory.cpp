#include "base/LargeMemory.h"

#include <sys/mman.h>

#include <cstdint>

namespace {

constexpr std::size_t page = 4096;
constexpr std::size_t largePage = 2 * 1024 * 1024;

} // namespace

// Advice may reach over the ends of the block: it changes no contents.
void preferLargePages(void* memory, std::size_t bytes)
{
    if (bytes < largePage)
        return;
    const std::size_t inFront = reinterpret_cast<std::uintptr_t>(memory) % page;
    const std::size_t pages = (inFront + bytes + page - 1) / page;
    madvise(static_cast<char*>(memory) - inFront, pages * page, MADV_HUGEPAGE);
}

// The allocator maps such a block by itself, with its own header and the
// list's in the page that is left free here; the system then lines the mapping
// up with large pages.
std::size_t largeBlockBytes(std::size_t bytes)
{
    if (bytes < largePage)
        return bytes;
    return (bytes + page + largePage - 1) / largePage * largePage - page;
}

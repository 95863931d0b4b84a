#include "codecs/ScarceMemory.h"

#include <cstdlib>
#include <new>

namespace {

int allocationsLeft = AllocationLimit::withoutBound;

} // namespace

AllocationLimit::AllocationLimit(int count)
{
    allocationsLeft = count;
}

AllocationLimit::~AllocationLimit()
{
    allocationsLeft = withoutBound;
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    if (allocationsLeft == 0) {
        AllocationLimit::refused = true;
        return nullptr;
    }
    if (allocationsLeft > 0)
        --allocationsLeft;
    return std::malloc(bytes > 0 ? bytes : 1);
}

void* operator new(std::size_t bytes)
{
    if (void* memory = operator new(bytes, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

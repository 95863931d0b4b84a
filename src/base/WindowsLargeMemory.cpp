#include "base/LargeMemory.h"

// Large pages want a right here that users do not have.
void preferLargePages(void*, std::size_t) {}

std::size_t largeBlockBytes(std::size_t bytes)
{
    return bytes;
}

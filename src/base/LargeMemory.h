#pragma once

#include <cstddef>

/// Asks the system to back a large block of memory with large pages, before it
/// is touched. A track's samples cost as much to touch as to encode otherwise.
/// A system that cannot do it ignores the wish.
void preferLargePages(void* memory, std::size_t bytes);

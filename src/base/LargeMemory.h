#pragma once

#include <QList>

#include <cstddef>

/// Asks the system to back a large block of memory with large pages, before it
/// is touched. A track's samples cost as much to touch as to encode otherwise.
/// A system that cannot do it ignores the wish.
void preferLargePages(void* memory, std::size_t bytes);

/// The bytes to allocate for a block of at least so many, such that it fills
/// large pages from end to end. Small blocks stay as they are.
std::size_t largeBlockBytes(std::size_t bytes);

/// Reserves room for count values, in large pages. A list that has the room
/// keeps its memory and its values; any other is emptied.
template<typename Value>
void reserveLarge(QList<Value>& list, qsizetype count)
{
    if (list.capacity() >= count)
        return;
    list = QList<Value>();
    const std::size_t bytes = largeBlockBytes(static_cast<std::size_t>(count) * sizeof(Value));
    list.reserve(static_cast<qsizetype>(bytes / sizeof(Value)));
    preferLargePages(list.data(), bytes);
}

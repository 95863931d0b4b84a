#include "metadata/tags/TagStream.h"

#include <algorithm>
#include <stdexcept>

void TagStream::insert(const TagLib::ByteVector& data, Offset start, Size replace)
{
    constexpr std::size_t piece = 1024 * 1024;

    const auto oldLength = static_cast<std::size_t>(length());
    const std::size_t tailStart = std::min<std::size_t>(start + replace, oldLength);
    const std::size_t newLength = start + data.size() + (oldLength - tailStart);
    if (newLength <= oldLength) {
        FileStream::insert(data, start, replace);
        return;
    }
    growTo(newLength);
    const std::size_t growth = newLength - oldLength;
    for (std::size_t end = oldLength; end > tailStart;) {
        const std::size_t place = end - std::min(piece, end - tailStart);
        seek(static_cast<long>(place));
        const TagLib::ByteVector moved = readBlock(static_cast<Size>(end - place));
        seek(static_cast<long>(place + growth));
        writeBlock(moved);
        end = place;
    }
    seek(static_cast<long>(start));
    writeBlock(data);
}

void TagStream::growTo(std::size_t newLength)
{
    const auto oldLength = length();
    seek(oldLength);
    writeBlock(
        TagLib::ByteVector(static_cast<unsigned int>(newLength - static_cast<std::size_t>(oldLength)), 0));
    if (static_cast<std::size_t>(length()) == newLength)
        return;
    truncate(oldLength);
    throw std::runtime_error("no room for the tags");
}

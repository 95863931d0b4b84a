#include "metadata/TagStream.h"

#include <algorithm>
#include <stdexcept>

void TagStream::insert(const TagLib::ByteVector& data, Offset start, Size replace)
{
    constexpr std::size_t piece = 1024 * 1024;

    const auto oldLength = static_cast<std::size_t>(length());
    const std::size_t tailStart = start + replace;
    if (data.size() <= replace || tailStart >= oldLength) {
        FileStream::insert(data, start, replace);
        return;
    }
    const std::size_t growth = data.size() - replace;
    // Takes all the room that is needed, or finds out that it is not there,
    // before a byte of the file changes.
    seek(static_cast<long>(oldLength));
    writeBlock(TagLib::ByteVector(static_cast<unsigned int>(growth), 0));
    if (static_cast<std::size_t>(length()) != oldLength + growth) {
        truncate(static_cast<long>(oldLength));
        throw std::runtime_error("no room for the tags");
    }
    for (std::size_t end = oldLength; end > tailStart;) {
        const std::size_t place = end - std::min(piece, end - tailStart);
        seek(static_cast<long>(place));
        const TagLib::ByteVector moved = readBlock(end - place);
        seek(static_cast<long>(place + growth));
        writeBlock(moved);
        end = place;
    }
    seek(static_cast<long>(start));
    writeBlock(data);
}

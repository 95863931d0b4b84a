#include "codecs/media/Mpeg4Boxes.h"

#include <algorithm>

namespace {

/// Whether the fields of this box take 64 bits.
bool isLong(InputFile& file)
{
    return file.readBig<std::uint32_t>() >> 24 == 1;
}

/// The entries that the box states, as far as it has room for them.
std::uint64_t readEntryCount(InputFile& file, const Mpeg4Box& box, std::uint64_t entryBytes)
{
    return std::min<std::uint64_t>(file.readBig<std::uint32_t>(), (box.end - box.body) / entryBytes);
}

} // namespace

std::optional<Mpeg4Box> boxAt(InputFile& file, std::uint64_t place, std::uint64_t end)
{
    constexpr std::uint32_t toTheEnd = 0;
    constexpr std::uint32_t longSize = 1;
    file.clear();
    if (place >= end || !file.seek(place))
        return std::nullopt;
    std::uint64_t size = file.readBig<std::uint32_t>();
    Mpeg4Box box;
    box.id = file.readBig<std::uint32_t>();
    if (size == longSize)
        size = file.readBig<std::uint64_t>();
    else if (size == toTheEnd)
        size = end - place;
    box.body = file.position();
    const std::uint64_t headerBytes = box.body - place;
    if (!file.good() || size < headerBytes || size > largestMpeg4File)
        return std::nullopt;
    box.end = std::min(place + size, end);
    return box;
}

std::uint64_t readUnitsASecond(InputFile& file)
{
    file.skip(isLong(file) ? 16 : 8); // when it was made and changed
    return file.readBig<std::uint32_t>();
}

Mpeg4Edits readEdits(InputFile& file, const Mpeg4Box& box)
{
    const bool wide = isLong(file);
    const std::uint64_t count = readEntryCount(file, box, wide ? 20 : 12);
    Mpeg4Edits edits;
    for (std::uint64_t i = 0; i < count && file.good(); ++i) {
        const std::uint64_t length = wide ? file.readBig<std::uint64_t>() : file.readBig<std::uint32_t>();
        const std::int64_t start = wide ? file.readBig<std::int64_t>() : file.readBig<std::int32_t>();
        file.readBig<std::uint32_t>(); // speed
        if (start < 0)
            continue; // a pause in front
        ++edits.count;
        edits.start = static_cast<std::uint64_t>(start);
        edits.length = length;
    }
    return edits;
}

std::uint64_t readMediaLength(InputFile& file, const Mpeg4Box& box)
{
    file.readBig<std::uint32_t>(); // version
    const std::uint64_t count = readEntryCount(file, box, 8);
    std::uint64_t length = 0;
    for (std::uint64_t i = 0; i < count && file.good(); ++i) {
        const std::uint64_t samples = file.readBig<std::uint32_t>();
        length += samples * file.readBig<std::uint32_t>();
    }
    return length;
}

std::uint64_t readSampleCount(InputFile& file)
{
    file.skip(8); // version, and a size for all samples or for the fields of sizes
    return file.readBig<std::uint32_t>();
}

std::uint64_t readChunkCount(InputFile& file, const Mpeg4Box& box)
{
    file.skip(4); // version
    return readEntryCount(file, box, 4);
}

std::uint64_t readLargestChunk(InputFile& file, const Mpeg4Box& box)
{
    file.readBig<std::uint32_t>(); // version
    const std::uint64_t count = readEntryCount(file, box, 12);
    std::uint64_t largest = 0;
    for (std::uint64_t i = 0; i < count && file.good(); ++i) {
        file.readBig<std::uint32_t>(); // the first chunk of its kind
        largest = std::max<std::uint64_t>(largest, file.readBig<std::uint32_t>());
        file.readBig<std::uint32_t>(); // description
    }
    return largest;
}

std::uint64_t readFragmentSamples(InputFile& file)
{
    file.skip(4); // version and flags
    return file.readBig<std::uint32_t>();
}

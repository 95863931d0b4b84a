#pragma once

#include "codecs/InputFile.h"

#include <cstdint>
#include <optional>

/// The boxes that an MPEG-4 file is made of, one within the other, and what those
/// hold that tell of its audio. Whatever they state, nothing is allocated, and of a
/// table no more entries are read than would fill its box.

/// More than any file has.
inline constexpr std::uint64_t largestMpeg4File = std::uint64_t{1} << 42;

struct Mpeg4Box {
    std::uint32_t id = 0;
    std::uint64_t body = 0; ///< offset in the file
    std::uint64_t end = 0;
};

/// The box at a place, with the file at its body. It is cut off where the one
/// around it ends.
std::optional<Mpeg4Box> boxAt(InputFile& file, std::uint64_t place, std::uint64_t end);

/// The parts of an edit list that play something, and the last of them.
struct Mpeg4Edits {
    std::uint64_t count = 0;
    std::uint64_t start = 0;  ///< in units of the track
    std::uint64_t length = 0; ///< in units of the movie
};

/// Each reads one kind of box, from its body on.
std::uint64_t readUnitsASecond(InputFile& file);
Mpeg4Edits readEdits(InputFile& file, const Mpeg4Box& box);
std::uint64_t readMediaLength(InputFile& file, const Mpeg4Box& box); ///< in units of the track
std::uint64_t readSampleCount(InputFile& file);
std::uint64_t readChunkCount(InputFile& file, const Mpeg4Box& box);
std::uint64_t readLargestChunk(InputFile& file, const Mpeg4Box& box); ///< in samples
std::uint64_t readFragmentSamples(InputFile& file);

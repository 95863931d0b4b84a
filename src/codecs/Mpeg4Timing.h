#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

/// Which part of the samples of an MPEG-4 file is the audio, by its edit list.
struct Mpeg4Timing {
    std::uint64_t unitsASecond = 0;
    std::uint64_t start = 0;  ///< units of the encoder's delay
    std::uint64_t length = 0; ///< units of audio after it
};

/// Nothing for a file that is no MPEG-4, that has no or more than one piece of
/// audio edited together, or that is laid out in fragments. The edit list counts
/// in coarse units; where the samples end within one of them, they are believed.
std::optional<Mpeg4Timing> readMpeg4Timing(const std::filesystem::path& path);

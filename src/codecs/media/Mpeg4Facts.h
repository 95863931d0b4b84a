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

/// What an MPEG-4 file says of itself in its boxes.
struct Mpeg4Facts {
    /// Of the first audio track. Nothing for a file that is no MPEG-4, whose audio
    /// is not one piece, or that is laid out in fragments. The edit list counts in
    /// coarse units; where the samples end within one of them, they are believed.
    std::optional<Mpeg4Timing> timing;

    /// False where the tables ask for an index of more samples than the file has
    /// bytes, or where there are more boxes than anybody needs.
    bool isPlausible = true;
};

Mpeg4Facts readMpeg4Facts(const std::filesystem::path& path);

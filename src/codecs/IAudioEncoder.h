#pragma once

#include "codecs/AudioFormat.h"

#include <filesystem>
#include <memory>

/// Turns blocks of audio into one file. Order: open, any number of write, close.
/// One thread at a time; nothing throws. The caller removes the file after a
/// failure.
class IAudioEncoder {
public:
    virtual ~IAudioEncoder() = default;

    /// Creates or truncates the file and writes its header. False when it can't
    /// be created, the format is refused, or a file is attached already.
    virtual bool open(const std::filesystem::path& path, const AudioFormat& format) = 0;

    /// Takes a block of any size; one without frames changes nothing. False
    /// when the file has gone bad.
    [[nodiscard]] virtual bool write(const AudioBlock& block) = 0;

    /// Completes the file. True only if everything up to here was written;
    /// false also when nothing was open.
    [[nodiscard]] virtual bool close() = 0;
};

enum EncoderId : int {
    WavEncoderId = 0,
    FlacEncoderId = 1,
    Mp3EncoderId = 2,
    AiffEncoderId = 3,
    AacEncoderId = 4,
    AlacEncoderId = 5,
};

/// A new, unopened encoder; null for any other number.
std::unique_ptr<IAudioEncoder> makeEncoder(EncoderId id);

#pragma once

#include "codecs/AudioFormat.h"

#include <filesystem>
#include <optional>

/// One file that a decoder has open, from its first frame to its last. It is made
/// for that file and opened once; what it throws is caught by its decoder.
class AudioStream {
public:
    virtual ~AudioStream() = default;

    /// Sets the format and the total. False when the file can't be opened or is
    /// not of this kind; the object is of no more use then.
    virtual bool open(const std::filesystem::path& path) = 0;

    /// The next frames; nothing at the end, and is not asked again.
    virtual std::optional<AudioBlock> read() = 0;

    const AudioFormat& format() const { return pcm; }
    const std::optional<quint64>& totalFrames() const { return total; }

protected:
    AudioFormat pcm;
    std::optional<quint64> total;
};

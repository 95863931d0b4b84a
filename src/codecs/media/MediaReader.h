#pragma once

#include "codecs/AudioFormat.h"

#include <filesystem>
#include <memory>
#include <optional>

/// The platform's decoder for MP3 and for AAC in ADTS and MPEG-4 files. It opens
/// the first audio stream of a file and delivers PCM. What the container
/// states as the encoder's delay and padding is not part of what it delivers.
class MediaReader {
public:
    enum class Outcome {
        Samples,
        Gap, ///< nothing this time, but not the end
        End,
        Failure,
    };

    virtual ~MediaReader() = default;

    /// False for a file without an audio stream of these kinds.
    virtual bool open(const std::filesystem::path& path) = 0;

    /// Asks for PCM of 16 or 24 bits. False when the stream is not delivered so;
    /// 24 bits stand for streams that decode to more than 16 bits or to floats.
    virtual bool choosePcm(int bits) = 0;

    /// What will be delivered; an unknown value is 0.
    virtual AudioFormat format() const = 0;

    /// In units of 100 ns, rounded up.
    virtual std::optional<quint64> duration() const = 0;

    /// The next samples, left-justified. The block is valid after Outcome::Samples only.
    virtual Outcome read(AudioBlock& block) = 0;
};

/// The reader of this platform.
std::unique_ptr<MediaReader> makeMediaReader();

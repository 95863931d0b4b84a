#pragma once

#include "codecs/AudioFormat.h"

#include <cstddef>
#include <filesystem>
#include <memory>

enum class MediaCodec { Aac, Alac };

/// What a MediaWriter is opened with.
struct MediaFormat {
    MediaCodec codec = MediaCodec::Aac;
    AudioFormat pcm;            ///< what will be written; also what a reader gets back
    quint32 bytesPerSecond = 0; ///< of the encoded audio; only a lossy codec looks at it
};

/// The platform's encoder for AAC and ALAC in MPEG-4 files. It takes packed PCM,
/// interleaved, the low byte first, and gives each frame the time that follows
/// from the count of frames before it. What the codec puts in front of the audio
/// and behind it is marked in the file, so that readers can leave it out.
class MediaWriter {
public:
    /// Completes a file that is still open, with no judgement.
    virtual ~MediaWriter() = default;

    /// Creates or truncates the file. False when the codec refuses the format, in
    /// which case no file is touched, and when the file can't be created.
    virtual bool open(const std::filesystem::path& path, const MediaFormat& format) = 0;

    /// False when the file has gone bad, even for a count of 0.
    [[nodiscard]] virtual bool write(const quint8* pcm, std::size_t frames) = 0;

    /// Completes the file. True only if everything up to here was written.
    [[nodiscard]] virtual bool finish() = 0;
};

using MediaWriterMaker = std::unique_ptr<MediaWriter> (*)();

/// The writer of this platform.
std::unique_ptr<MediaWriter> makeMediaWriter();

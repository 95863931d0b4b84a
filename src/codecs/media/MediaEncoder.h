#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/media/MediaWriter.h"

#include <optional>
#include <vector>

/// What the encoders over a MediaWriter have in common: the file, the pieces that
/// it is written in, and that a file which lost a block is not whole.
class MediaEncoder : public IAudioEncoder {
public:
    ~MediaEncoder() override;

    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;

    /// True, unlike with most encoders, also when nothing was open.
    [[nodiscard]] bool close() override;

protected:
    explicit MediaEncoder(MediaWriterMaker writerMaker) : makeWriter(writerMaker) {}

    /// Gets ready for a source. Returns what the writer is to be opened with;
    /// nothing for a source that is refused.
    virtual std::optional<MediaFormat> prepare(const AudioFormat& source) = 0;

    /// Lays frames of the source out at the front of the bytes as the writer takes
    /// them. Returns how many frames they have become.
    virtual std::size_t pack(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes) = 0;

    /// Of the source whose file is being written.
    quint16 channels() const { return sourceChannels; }

private:
    bool openWriter(const std::filesystem::path& path, const AudioFormat& source);
    bool writeBlock(const AudioBlock& block);
    bool writePiece(const qint32* samples, std::size_t frames);

    MediaWriterMaker makeWriter;
    std::unique_ptr<MediaWriter> writer;
    std::vector<quint8> pcm;
    quint16 sourceChannels = 0;
    bool whole = true; ///< no block was lost
};

#pragma once

#include "codecs/IAudioDecoder.h"

/// Ogg Vorbis, through libvorbisfile, rounded to 16 bits. What a damaged page held
/// is left out, and the rest follows. The links of a chained file are delivered in
/// the first one's number of channels, up to one of another rate.
class OggDecoder : public IAudioDecoder {
public:
    OggDecoder();
    ~OggDecoder() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

private:
    struct Stream;

    bool openStream(const std::filesystem::path& path);
    std::optional<AudioBlock> readBlock();
    quint64 decode(quint64 frames, qint32* target);

    AudioFormat pcm;
    std::optional<quint64> total;
    std::unique_ptr<Stream> stream;
    bool ended = false;
};

#pragma once

#include "codecs/IAudioDecoder.h"

/// Ogg Vorbis, through stb_vorbis, rounded to 16 bits by it. The library trusts
/// its input, so it sees a file only up to the first damaged page, and only one
/// whose headers are sound. It garbles streams of more than two coupled channels.
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

    AudioFormat pcm;
    std::optional<quint64> total;
    std::unique_ptr<Stream> stream;
    bool ended = false;
};

#pragma once

#include "codecs/IAudioDecoder.h"

/// WavPack, through its library, without a correction file. Floating-point files
/// come out as their words, taken for integers.
class WavPackDecoder : public IAudioDecoder {
public:
    WavPackDecoder();
    ~WavPackDecoder() override;

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

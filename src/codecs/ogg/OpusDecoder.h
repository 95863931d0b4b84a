#pragma once

#include "codecs/IAudioDecoder.h"

/// Opus in Ogg, through libopusfile, always at 48000 Hz whatever was recorded. The
/// links of a chained file are delivered in the first one's number of channels.
class OpusDecoder_ : public IAudioDecoder {
public:
    OpusDecoder_();
    ~OpusDecoder_() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

private:
    struct Stream;

    std::optional<AudioBlock> readBlock();

    AudioFormat pcm;
    std::optional<quint64> total;
    std::unique_ptr<Stream> stream;
    bool ended = false;
};

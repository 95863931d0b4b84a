#pragma once

#include "codecs/IAudioDecoder.h"

/// Native FLAC, through libFLAC. A total of 0 is one that the file does not
/// state. Around a damaged frame the audio is silent or missing, and the rest follows;
/// the stream ends at a frame with another number of channels than the header names.
class FlacDecoder : public IAudioDecoder {
public:
    FlacDecoder();
    ~FlacDecoder() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

private:
    class Stream;

    AudioFormat pcm;
    std::optional<quint64> total;
    std::unique_ptr<Stream> stream;
};

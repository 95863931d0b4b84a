#pragma once

#include "codecs/IAudioDecoder.h"

/// Native FLAC, through libFLAC. A total of 0 is one that the file does not
/// state. The stream ends at the first frame that can't be decoded and at one
/// with another number of channels than the file's header names.
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

#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/MediaDecoding.h"

/// MPEG Layer III, decoded by the platform.
class Mp3Decoder : public IAudioDecoder {
public:
    ~Mp3Decoder() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override;
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override;
    void close() override;

private:
    MediaDecoding media;
};

#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/media/MediaDecoding.h"

/// MPEG Layer III, decoded by the platform.
class Mp3Decoder : public IAudioDecoder {
public:
    ~Mp3Decoder() override = default;

    bool open(const std::filesystem::path& path) override { return media.open(path); }
    AudioFormat format() const override { return media.format(); }
    std::optional<AudioBlock> read() override { return media.read(); }
    std::optional<quint64> totalFrames() const override { return media.totalFrames(); }
    void close() override { media.close(); }

private:
    MediaDecoding media;
};

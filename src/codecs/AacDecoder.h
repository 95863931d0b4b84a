#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/MediaDecoding.h"

/// AAC in ADTS and MPEG-4 files, and ALAC in the latter, decoded by the platform.
class AacDecoder : public IAudioDecoder {
public:
    ~AacDecoder() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override;
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override;
    void close() override;

private:
    MediaDecoding media;
};

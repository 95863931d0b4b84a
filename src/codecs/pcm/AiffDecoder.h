#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/pcm/PcmFileReader.h"

/// AIFF of 16, 24 or 32 bits. AIFF-C is refused. The frame count that the header
/// states plays no part; the size of the samples does.
class AiffDecoder : public IAudioDecoder {
public:
    ~AiffDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return reader.format(); }
    std::optional<AudioBlock> read() override { return reader.read(); }
    std::optional<quint64> totalFrames() const override { return reader.totalFrames(); }
    void close() override { reader.close(); }

private:
    PcmFileReader reader{ByteOrder::Big};
};

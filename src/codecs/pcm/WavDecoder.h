#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/pcm/PcmFileReader.h"

/// RIFF WAVE, read as integers of the width that the header states, whatever its
/// format tag says. Widths other than 16, 24 and 32 deliver silence. Chunks are
/// taken to follow each other without pad bytes.
class WavDecoder : public IAudioDecoder {
public:
    ~WavDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return reader.format(); }
    std::optional<AudioBlock> read() override { return reader.read(); }
    std::optional<quint64> totalFrames() const override { return reader.totalFrames(); }
    void close() override { reader.close(); }

private:
    PcmFileReader reader{ByteOrder::Little};
};

#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/dsd/DsdFileReader.h"

/// DSDIFF, one-bit audio with the channels interleaved byte by byte. Delivers an
/// eighth of the DSD rate, one frame for each byte of a channel. Compressed
/// (DST) files are refused.
class DffDecoder : public IAudioDecoder {
public:
    ~DffDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return reader.format(); }
    std::optional<AudioBlock> read() override { return reader.read(); }
    std::optional<quint64> totalFrames() const override { return reader.totalFrames(); }
    void close() override { reader.close(); }

private:
    DsdFileReader reader;
};

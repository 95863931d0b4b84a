#pragma once

#include "codecs/DsdFilterBank.h"
#include "codecs/IAudioDecoder.h"
#include "codecs/InputFile.h"

/// DSDIFF, one-bit audio with the channels interleaved byte by byte. Delivers an
/// eighth of the DSD rate, one frame for each byte of a channel. Compressed
/// (DST) files are refused.
class DffDecoder : public IAudioDecoder {
public:
    ~DffDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

private:
    std::optional<AudioBlock> readBlock();

    InputFile file;
    AudioFormat pcm;
    std::optional<quint64> total;
    quint64 position = 0; ///< frames
    DsdFilterBank filters;
};

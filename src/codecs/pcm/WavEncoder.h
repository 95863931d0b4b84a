#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/OutputFile.h"

/// RIFF WAVE, integer PCM of 16 bits for sources up to 16 bits, else of 24. All
/// samples of a block are written; its frame count is not looked at. Sizes of
/// files above 4 GiB wrap.
class WavEncoder : public IAudioEncoder {
public:
    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;
    [[nodiscard]] bool close() override;

private:
    bool openFile(const std::filesystem::path& path, const AudioFormat& format);
    bool writeBlock(const AudioBlock& block);

    OutputFile file;
    quint16 writtenBits = 16;
    quint64 dataBytes = 0;
    quint64 dataSizePosition = 0;
};

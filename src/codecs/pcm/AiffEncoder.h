#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/OutputFile.h"

/// AIFF, integer PCM of 16 bits for sources of exactly 16 bits, else of 24. The
/// frame counts of the blocks make the sizes in the header.
class AiffEncoder : public IAudioEncoder {
public:
    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;
    [[nodiscard]] bool close() override;

private:
    bool writeBlock(const AudioBlock& block);

    OutputFile file;
    quint16 channels = 0;
    quint16 writtenBits = 16;
    quint64 frames = 0;
};

#pragma once

#include "codecs/IAudioEncoder.h"

/// AAC in MPEG-4. This build has no MPEG-4 writer, so every `open` is refused,
/// nothing can be written, and closing has nothing to complete.
class AacEncoder : public IAudioEncoder {
public:
    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;

    /// True, unlike with the other encoders: there is nothing to lose.
    [[nodiscard]] bool close() override;
};

#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/PcmBytes.h"
#include "codecs/media/MediaWriter.h"

#include <vector>

/// ALAC in MPEG-4, 16 bits for sources of up to 16 and 24 for all others, whose
/// lower bits are dropped. What the platform's encoder refuses is refused.
class AlacEncoder : public IAudioEncoder {
public:
    explicit AlacEncoder(MediaWriterMaker maker = makeMediaWriter) : makeWriter(maker) {}
    ~AlacEncoder() override;

    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;

    /// True, unlike with most encoders, also when nothing was open.
    [[nodiscard]] bool close() override;

private:
    bool openWriter(const std::filesystem::path& path, const AudioFormat& source);
    bool writeBlock(const AudioBlock& block);

    MediaWriterMaker makeWriter;
    std::unique_ptr<MediaWriter> writer;
    std::vector<quint8> pcm;
    bool whole = true; ///< no block was lost
    quint16 channels = 0;
    PcmLayout layout = PcmLayout::Little16;
};

#pragma once

#include "codecs/PcmBytes.h"
#include "codecs/media/MediaEncoder.h"

/// ALAC in MPEG-4, 16 bits for sources of up to 16 and 24 for all others, whose
/// lower bits are dropped. What the platform's encoder refuses is refused.
class AlacEncoder : public MediaEncoder {
public:
    explicit AlacEncoder(MediaWriterMaker maker = makeMediaWriter) : MediaEncoder(maker) {}

private:
    std::optional<MediaFormat> prepare(const AudioFormat& source) override;
    std::size_t pack(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes) override;

    PcmLayout layout = PcmLayout::Little16;
};

#pragma once

#include "codecs/media/AacDecimator.h"
#include "codecs/media/AacDither.h"
#include "codecs/media/MediaEncoder.h"

/// AAC in MPEG-4 at 192 kbit/s, mono or stereo, from 16 bits. Rates that are
/// whole multiples of 44100 or 48000 Hz are brought down to those, all others are
/// refused. Dither is added where the source is wider or was brought down.
class AacEncoder : public MediaEncoder {
public:
    explicit AacEncoder(MediaWriterMaker maker = makeMediaWriter) : MediaEncoder(maker) {}

private:
    std::optional<MediaFormat> prepare(const AudioFormat& source) override;
    std::size_t pack(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes) override;
    std::size_t dither(const qint32* samples, std::size_t frames, std::vector<quint8>& bytes);

    std::unique_ptr<AacDecimator> decimator; ///< only for rates to bring down
    AacDither noise;
    bool dithered = false;
};

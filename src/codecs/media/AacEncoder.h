#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/media/AacDecimator.h"
#include "codecs/media/AacDither.h"
#include "codecs/media/MediaWriter.h"

#include <vector>

/// AAC in MPEG-4 at 192 kbit/s, mono or stereo, from 16 bits. Rates that are
/// whole multiples of 44100 or 48000 Hz are brought down to those, all others are
/// refused. Dither is added where the source is wider or was brought down.
class AacEncoder : public IAudioEncoder {
public:
    explicit AacEncoder(MediaWriterMaker maker = makeMediaWriter) : makeWriter(maker) {}
    ~AacEncoder() override;

    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;

    /// True, unlike with most encoders, also when nothing was open.
    [[nodiscard]] bool close() override;

private:
    bool openWriter(const std::filesystem::path& path, const AudioFormat& source);
    bool writeBlock(const AudioBlock& block);
    bool writePiece(const qint32* samples, std::size_t frames);
    bool pack(const qint32* samples, std::size_t frames);

    MediaWriterMaker makeWriter;
    std::unique_ptr<MediaWriter> writer;
    std::unique_ptr<AacDecimator> decimator; ///< only for rates to bring down
    AacDither dither;
    std::vector<quint8> pcm;
    bool whole = true; ///< no block was lost
    quint16 channels = 0;
    bool dithered = false;
};

#pragma once

#include "codecs/DsdFilterBank.h"
#include "codecs/IAudioDecoder.h"
#include "codecs/InputFile.h"

/// DSF, one-bit audio in blocks of one channel each. Delivers an eighth of the
/// DSD rate, one frame for each byte of a channel, the padding of the last block
/// included. A file whose block would take more than 256 MiB is refused.
class DsfDecoder : public IAudioDecoder {
public:
    ~DsfDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

private:
    bool readHeader();
    bool readFormatChunk();
    std::optional<AudioBlock> readBlock();

    InputFile file;
    AudioFormat pcm;
    std::optional<quint64> total;
    bool lsbFirst = false;
    quint32 blockBytes = 0; ///< of one channel
    quint64 position = 0;   ///< bytes of each channel that are done
    DsdFilterBank filters;
};

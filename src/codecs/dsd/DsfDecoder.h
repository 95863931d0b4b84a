#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/dsd/DsdFileReader.h"

/// DSF, one-bit audio in blocks of one channel each. Delivers an eighth of the
/// DSD rate, one frame for each byte of a channel, the padding of the last block
/// included. A file whose block would take more than 256 MiB is refused.
class DsfDecoder : public IAudioDecoder {
public:
    ~DsfDecoder() override = default;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return reader.format(); }
    std::optional<AudioBlock> read() override { return reader.read(); }
    std::optional<quint64> totalFrames() const override { return reader.totalFrames(); }
    void close() override { reader.close(); }

private:
    DsdFileReader reader;
};

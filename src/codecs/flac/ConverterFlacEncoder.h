#pragma once

#include "codecs/IAudioEncoder.h"

/// Native FLAC for rip and conversion alike, 16 bits for sources of exactly 16
/// bits, else 24. The level is encoderOptions.flacCompressionLevel; all else is
/// the library's default for it.
class ConverterFlacEncoder : public IAudioEncoder {
public:
    ConverterFlacEncoder();
    ~ConverterFlacEncoder() override;

    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;
    [[nodiscard]] bool close() override;

private:
    class Stream;

    std::unique_ptr<Stream> stream;
};

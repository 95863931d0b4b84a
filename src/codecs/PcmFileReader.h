#pragma once

#include "codecs/AudioFormat.h"
#include "codecs/InputFile.h"
#include "codecs/PcmUnpack.h"

#include <optional>

/// Where the samples of an uncompressed file lie.
struct PcmLayoutInFile {
    AudioFormat format;
    quint64 firstSample = 0; ///< offset in the file
    quint64 dataBytes = 0;
};

/// The frames of an uncompressed file, block after block. What the file is too
/// short for reads as zeroes, up to the size that its header states.
class PcmFileReader {
public:
    explicit PcmFileReader(ByteOrder byteOrder) : order(byteOrder) {}

    /// Goes to the first sample of the file.
    void start(InputFile& file, const PcmLayoutInFile& layout);

    std::optional<AudioBlock> read(InputFile& file);
    const AudioFormat& format() const { return pcm; }
    quint64 totalFrames() const { return total; }

private:
    ByteOrder order;
    AudioFormat pcm;
    quint64 total = 0;
    quint64 position = 0; ///< frames handed out
};

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

/// An uncompressed file and its frames, block after block. What the file is too
/// short for reads as zeroes, up to the size that its header states.
class PcmFileReader {
public:
    /// Nothing for a file that is refused.
    using HeaderReader = std::optional<PcmLayoutInFile> (*)(InputFile&);

    explicit PcmFileReader(ByteOrder byteOrder) : order(byteOrder) {}

    bool open(const std::filesystem::path& path, HeaderReader readHeader);
    std::optional<AudioBlock> read();
    void close() { file.close(); }
    const AudioFormat& format() const { return pcm; }
    quint64 totalFrames() const { return total; }

private:
    void start(const PcmLayoutInFile& layout);
    std::optional<AudioBlock> readBlock();

    ByteOrder order;
    InputFile file;
    AudioFormat pcm;
    quint64 total = 0;
    quint64 position = 0; ///< frames handed out
};

#pragma once

#include "codecs/AudioStream.h"
#include "codecs/InputFile.h"
#include "codecs/PcmUnpack.h"

/// Where the samples of an uncompressed file lie.
struct PcmLayoutInFile {
    AudioFormat format;
    quint64 firstSample = 0; ///< offset in the file
    quint64 dataBytes = 0;
};

/// An uncompressed file. What it is too short for reads as zeroes, up to the size
/// that its header states.
class PcmFileStream : public AudioStream {
public:
    /// Nothing for a file that is refused.
    using HeaderReader = std::optional<PcmLayoutInFile> (*)(InputFile&);

    PcmFileStream(ByteOrder byteOrder, HeaderReader headerReader) : order(byteOrder), readHeader(headerReader)
    {
    }

    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    ByteOrder order;
    HeaderReader readHeader;
    InputFile file;
    quint64 position = 0; ///< frames handed out
};

#pragma once

#include "codecs/AudioStream.h"
#include "codecs/InputFile.h"
#include "codecs/dsd/DsdFilterBank.h"

/// What the header of a file of one-bit audio tells.
struct DsdLayoutInFile {
    quint32 frequency = 0; ///< bits of a channel a second
    quint16 channels = 0;
    quint64 firstByte = 0; ///< offset in the file
    quint64 dataBytes = 0;
    quint64 blockFrames = 0;  ///< the most that one block delivers
    bool channelRuns = false; ///< a block holds a run of each channel, not bytes in turn
    bool lsbFirst = false;
};

/// A file of one-bit audio at an eighth of its rate: one frame for each byte of a
/// channel. What the file is too short for reads as zero bytes.
class DsdFileStream : public AudioStream {
public:
    /// Nothing for a file that is refused; a layout has a rate and channels.
    using HeaderReader = std::optional<DsdLayoutInFile> (*)(InputFile&);

    explicit DsdFileStream(HeaderReader headerReader) : readHeader(headerReader) {}

    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    HeaderReader readHeader;
    InputFile file;
    DsdLayoutInFile layout;
    quint64 position = 0; ///< frames handed out
    DsdFilterBank filters;
};

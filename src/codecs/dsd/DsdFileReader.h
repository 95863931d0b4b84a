#pragma once

#include "codecs/InputFile.h"
#include "codecs/dsd/DsdFilterBank.h"

#include <optional>

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

/// A file of one-bit audio at an eighth of its rate, block after block: one frame
/// for each byte of a channel. What the file is too short for reads as zero bytes.
class DsdFileReader {
public:
    /// Nothing for a file that is refused; a layout has a rate and channels.
    using HeaderReader = std::optional<DsdLayoutInFile> (*)(InputFile&);

    bool open(const std::filesystem::path& path, HeaderReader readHeader);
    std::optional<AudioBlock> read();
    void close();
    const AudioFormat& format() const { return pcm; }
    const std::optional<quint64>& totalFrames() const { return total; }

private:
    bool start(const std::optional<DsdLayoutInFile>& found);
    std::optional<AudioBlock> readBlock();

    InputFile file;
    DsdLayoutInFile layout;
    AudioFormat pcm;
    std::optional<quint64> total;
    quint64 position = 0; ///< frames handed out
    DsdFilterBank filters;
};

#pragma once

#include "codecs/IAudioDecoder.h"
#include "codecs/media/MediaReader.h"

/// What the decoders over a MediaReader have in common, which is all but their
/// names.
class MediaDecoding {
public:
    using ReaderMaker = std::unique_ptr<MediaReader> (*)();

    explicit MediaDecoding(ReaderMaker maker = makeMediaReader) : makeReader(maker) {}

    bool open(const std::filesystem::path& path);
    const AudioFormat& format() const { return pcm; }
    std::optional<AudioBlock> read();
    const std::optional<quint64>& totalFrames() const { return total; }
    void close();

private:
    bool openReader(const std::filesystem::path& path);
    std::optional<AudioBlock> readBlock();

    ReaderMaker makeReader;
    std::unique_ptr<MediaReader> reader;
    std::vector<quint8> bytes;
    AudioFormat pcm;
    std::optional<quint64> total;
    bool ended = false;
};

#pragma once

#include "codecs/IAudioDecoder.h"

class AudioStream;

/// What all decoders have in common, which is all but the file under their hands:
/// one at a time, facts that outlast its end, and no exception.
class StreamDecoder : public IAudioDecoder {
public:
    ~StreamDecoder() override;

    bool open(const std::filesystem::path& path) override;
    AudioFormat format() const override { return pcm; }
    std::optional<AudioBlock> read() override;
    std::optional<quint64> totalFrames() const override { return total; }
    void close() override;

protected:
    using StreamMaker = std::unique_ptr<AudioStream> (*)();

    /// @param unopenedTotal  what is told of the total before the first open
    explicit StreamDecoder(StreamMaker streamMaker, std::optional<quint64> unopenedTotal = std::nullopt);

private:
    StreamMaker maker;
    AudioFormat pcm;
    std::optional<quint64> total;
    std::unique_ptr<AudioStream> stream;
    bool ended = false;
};

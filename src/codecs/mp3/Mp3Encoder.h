#pragma once

#include "codecs/IAudioEncoder.h"
#include "codecs/OutputFile.h"

#include <vector>

struct lame_global_struct;

/// MPEG Layer III, constant 320 kbit/s unless encoderOptions.mp3UseVbr asks for
/// the best variable rate. The first two channels of a source are taken. `close`
/// rewrites the first frame, so tags are written to the closed file only.
class Mp3Encoder : public IAudioEncoder {
public:
    Mp3Encoder();
    ~Mp3Encoder() override;

    bool open(const std::filesystem::path& path, const AudioFormat& format) override;
    [[nodiscard]] bool write(const AudioBlock& block) override;
    [[nodiscard]] bool close() override;

private:
    struct Deleter {
        void operator()(lame_global_struct* handle) const;
    };
    using Handle = std::unique_ptr<lame_global_struct, Deleter>;

    bool openFile(const std::filesystem::path& path, const AudioFormat& format);
    bool writeBlock(const AudioBlock& block);
    bool encode(const qint32* samples, std::size_t frames);
    bool writeTail();

    OutputFile file;
    quint16 channels = 0;
    std::vector<int> left;
    std::vector<int> right;
    std::vector<unsigned char> encoded;
    Handle lame;
};

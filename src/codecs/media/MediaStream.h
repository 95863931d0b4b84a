#pragma once

#include "codecs/AudioStream.h"
#include "codecs/media/MediaReader.h"

/// A file that the platform decodes, as left-justified samples.
class MediaStream : public AudioStream {
public:
    explicit MediaStream(std::unique_ptr<MediaReader> platformReader = makeMediaReader())
        : reader(std::move(platformReader))
    {
    }

    bool open(const std::filesystem::path& path) override;
    std::optional<AudioBlock> read() override;

private:
    std::unique_ptr<MediaReader> reader;
};

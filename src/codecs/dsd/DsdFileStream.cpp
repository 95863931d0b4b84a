#include "codecs/dsd/DsdFileStream.h"

#include <algorithm>

bool DsdFileStream::open(const std::filesystem::path& path)
{
    const auto found = file.open(path) ? readHeader(file) : std::nullopt;
    if (!found)
        return false;
    layout = *found;
    pcm = {layout.frequency >> 3, layout.channels, 24};
    total = layout.dataBytes / layout.channels;
    filters.reset(layout.channels);
    file.clear();
    file.seek(layout.firstByte);
    return true;
}

std::optional<AudioBlock> DsdFileStream::read()
{
    if (position >= *total)
        return std::nullopt;
    const std::size_t frames = std::min(*total - position, layout.blockFrames);
    std::vector<quint8> bytes(frames * layout.channels);
    file.read(bytes.data(), bytes.size());
    position += frames;
    const std::size_t channelStep = layout.channelRuns ? frames : 1;
    const std::size_t byteStep = layout.channelRuns ? 1 : layout.channels;
    return filters.decode(bytes, frames, {channelStep, byteStep, layout.lsbFirst});
}

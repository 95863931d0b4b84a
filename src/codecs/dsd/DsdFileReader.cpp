#include "codecs/dsd/DsdFileReader.h"

#include "codecs/NoThrow.h"

#include <algorithm>

bool DsdFileReader::open(const std::filesystem::path& path, HeaderReader readHeader)
{
    if (!file.open(path))
        return false;
    const bool opened = withoutThrowing([&] { return start(readHeader(file)); });
    if (!opened) {
        close();
        pcm = {};
        total.reset();
    }
    return opened;
}

bool DsdFileReader::start(const std::optional<DsdLayoutInFile>& found)
{
    if (!found)
        return false;
    layout = *found;
    pcm = {layout.frequency >> 3, layout.channels, 24};
    total = layout.dataBytes / layout.channels;
    position = 0;
    filters.reset(layout.channels);
    file.clear();
    file.seek(layout.firstByte);
    return true;
}

std::optional<AudioBlock> DsdFileReader::read()
{
    return withoutThrowing([this] { return readBlock(); });
}

std::optional<AudioBlock> DsdFileReader::readBlock()
{
    if (filters.isEmpty() || position >= total.value_or(0))
        return std::nullopt;
    const std::size_t frames = std::min(*total - position, layout.blockFrames);
    std::vector<quint8> bytes(frames * layout.channels);
    file.read(bytes.data(), bytes.size());
    position += frames;
    const std::size_t channelStep = layout.channelRuns ? frames : 1;
    const std::size_t byteStep = layout.channelRuns ? 1 : layout.channels;
    return filters.decode(bytes, frames, {channelStep, byteStep, layout.lsbFirst});
}

void DsdFileReader::close()
{
    file.close();
    filters.clear();
    position = 0;
}

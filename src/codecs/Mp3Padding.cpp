#include "codecs/Mp3Padding.h"

#include "codecs/InputFile.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

// Enough of the first MPEG frame for the largest side information and the tag.
using FrameStart = std::array<unsigned char, 256>;

void skipId3(InputFile& file)
{
    std::array<unsigned char, 10> header{};
    if (file.read(header.data(), header.size()) && std::memcmp(header.data(), "ID3", 3) == 0) {
        std::uint32_t size = 0;
        for (std::size_t i = 6; i < header.size(); ++i)
            size = size << 7 | (header[i] & 0x7Fu);
        constexpr unsigned char footer = 0x10;
        file.skip(size + ((header[5] & footer) != 0 ? header.size() : 0));
    } else {
        file.clear();
        file.seek(0);
    }
}

/// Bytes between the frame's header and where its audio, or the tag, begins.
std::size_t sideInformationBytes(const FrameStart& frame)
{
    const bool isVersion1 = (frame[1] & 0x18) == 0x18;
    const bool isMono = (frame[3] & 0xC0) == 0xC0;
    if (isVersion1)
        return isMono ? 17 : 32;
    return isMono ? 9 : 17;
}

} // namespace

std::uint32_t mp3EndPadding(const std::filesystem::path& path)
{
    // Name of the tag, its flags, frame count, size, seek table, quality; then the
    // encoder's name and settings, and in their midst the two lengths of 12 bits.
    constexpr std::size_t lengthsOffset = 120 + 21;

    InputFile file;
    if (!file.open(path))
        return 0;
    skipId3(file);
    FrameStart frame{};
    if (!file.read(frame.data(), frame.size()) || frame[0] != 0xFF || (frame[1] & 0xE0) != 0xE0)
        return 0;
    const unsigned char* tag = frame.data() + 4 + sideInformationBytes(frame);
    const bool isTag = std::memcmp(tag, "Xing", 4) == 0 || std::memcmp(tag, "Info", 4) == 0;
    constexpr std::uint32_t allFields = 15;
    if (!isTag || byteorder::readBig<std::uint32_t>(tag + 4) != allFields)
        return 0;
    const std::uint32_t padding = (tag[lengthsOffset + 1] & 0x0Fu) << 8 | tag[lengthsOffset + 2];
    // The decoder's own delay is counted into the padding.
    constexpr std::uint32_t decoderDelay = 528 + 1;
    return padding > decoderDelay ? padding - decoderDelay : 0;
}

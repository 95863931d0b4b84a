#include "codecs/VorbisHeaders.h"

#include "base/ByteOrder.h"
#include "codecs/VorbisSetup.h"

#include <cstdint>

namespace {

constexpr int unreadBytes = 7; // packet type and "vorbis"

bool hasType(const QByteArray& packet, char type)
{
    return packet.size() >= unreadBytes && packet[0] == type && packet.mid(1, 6) == "vorbis";
}

/// All texts lie within the packet.
bool commentsAreSound(const QByteArray& packet)
{
    if (!hasType(packet, 3))
        return false;
    const auto size = static_cast<std::uint64_t>(packet.size());
    std::uint64_t place = unreadBytes;
    bool sound = true;
    const auto readCount = [&] {
        if (size - place < 4) {
            sound = false;
            return std::uint64_t{0};
        }
        place += 4;
        return std::uint64_t{byteorder::readLittle<std::uint32_t>(packet.constData() + place - 4)};
    };
    const auto skipText = [&] {
        const std::uint64_t length = readCount();
        sound = sound && length <= size - place;
        if (sound)
            place += length;
    };
    skipText(); // vendor
    const std::uint64_t count = readCount();
    for (std::uint64_t i = 0; i < count && sound; ++i)
        skipText();
    return sound && place < size;
}

} // namespace

bool vorbisHeadersAreSound(const std::vector<QByteArray>& packets)
{
    if (packets.size() < 3 || !hasType(packets[0], 1) || !commentsAreSound(packets[1])
        || !hasType(packets[2], 5))
        return false;
    return vorbisSetupIsSound(packets[2]);
}

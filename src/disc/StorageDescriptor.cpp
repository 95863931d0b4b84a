#include "disc/StorageDescriptor.h"

#include "base/ByteOrder.h"

#include <algorithm>

namespace {

constexpr size_t leastBytes = 40;
constexpr size_t vendorPlace = 12;
constexpr size_t productPlace = 16;
constexpr size_t busPlace = 28;
constexpr quint32 usbBus = 7;

QByteArray textAt(std::span<const quint8> block, size_t place)
{
    const auto start = byteorder::readLittle<quint32>(block.data() + place);
    if (start == 0 || start >= block.size())
        return {};
    const auto rest = block.subspan(start);
    const auto end = std::ranges::find(rest, quint8{0});
    return QByteArray(reinterpret_cast<const char*>(rest.data()), end - rest.begin());
}

} // namespace

std::optional<DriveDescriptor> decodeStorageDescriptor(std::span<const quint8> block)
{
    if (block.size() < leastBytes)
        return std::nullopt;
    return DriveDescriptor{textAt(block, vendorPlace), textAt(block, productPlace),
                           byteorder::readLittle<quint32>(block.data() + busPlace) == usbBus};
}

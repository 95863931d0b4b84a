#pragma once

#include "disc/DriveDevice.h"

#include <optional>
#include <span>

/// Decodes a STORAGE_DEVICE_DESCRIPTOR: little-endian words with the place of the
/// vendor's text at byte 12, that of the product's at 16, and the bus at 28. A
/// text ends at a NUL or with the block; one at place 0 or behind the block is
/// empty.
///
/// @param block  as much as came; fewer than 40 bytes are no descriptor
std::optional<DriveDescriptor> decodeStorageDescriptor(std::span<const quint8> block);

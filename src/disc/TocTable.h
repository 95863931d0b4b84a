#pragma once

#include "disc/DiscModel.h"

#include <array>

/// A table of contents as drives deliver it: 804 bytes, of which byte 2 is the first
/// track, byte 3 the last, and entries of 8 bytes follow, the lead-out behind the last.
using TocTable = std::array<quint8, 804>;

bool plausibleToc(const TocTable& table);

/// @param table  a plausible one
DiscToc discFromToc(const TocTable& table);

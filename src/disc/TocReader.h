#pragma once

#include "disc/DiscModel.h"
#include "disc/DriveDevice.h"

/// Asks a drive for its table of contents, with patience for one that is becoming
/// ready, and a few times where the answer makes no sense.
///
/// @param failure  what the drive said last
/// @return         no tracks where it gave none
DiscToc readDiscToc(DriveDevice& device, DriveFailure& failure);

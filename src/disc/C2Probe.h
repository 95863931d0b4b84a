#pragma once

#include "disc/DriveDevice.h"

/// Whether a drive delivers believable C2 pointers with these sectors. Sectors that
/// cannot be read tell nothing of that; some of them are tried alone then.
///
/// @param count  not 0
bool deliversC2(DriveDevice& device, quint32 lba, quint32 count);

#pragma once

#include "disc/DriveDevice.h"

#include <QString>

/// "Vendor - Product" of a drive, or less where it tells less.
QString driveModelText(DriveDevice& device);

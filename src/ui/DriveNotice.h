#pragma once

#include "disc/DriveDevice.h"

#include <QString>

/// Why the Metadata step has no track list, and what the user can do.

QString driveIsShutNotice();
QString noDiscNotice(DriveFailure failure);

#pragma once

#include "disc/DiscModel.h"

#include <QString>

/// The disc that a CUE sheet and its BIN or WAV file make. A sheet that yields
/// nothing has no tracks.
DiscToc readCueDisc(const QString& path);

#pragma once

#include "codecs/AudioFormat.h"

/// What becomes of a stream that changes within a file: what was announced when
/// it was opened holds to its end.

/// The block in another number of channels, in WAVE order before and after. A
/// speaker that is not there is heard from its neighbours, the low one aside; the
/// whole is lowered where that could pass full scale.
/// @param bits  the width that the samples are rounded to, left-justified
AudioBlock mapChannels(const AudioBlock& block, quint16 from, quint16 to, int bits);

/// Says in the log that a file is delivered up to where its rate changes.
void reportRateChange(quint32 from, quint32 to);

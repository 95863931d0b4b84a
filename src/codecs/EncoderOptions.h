#pragma once

#include <QtGlobal>

/// Process-wide choices of the encoders. The program never changes them; tests do.
struct EncoderOptions {
    qint32 flacCompressionLevel = 5; ///< clamped to 0..8 where it is used
    bool mp3UseVbr = false;          ///< false: constant 320 kbit/s
    bool replayGainEnabled = false;
};

extern EncoderOptions encoderOptions;

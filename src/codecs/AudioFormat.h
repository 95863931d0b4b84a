#pragma once

#include <QList>
#include <QtGlobal>

/// What a decoder delivers and an encoder is opened with.
struct AudioFormat {
    quint32 sampleRate = 44100; ///< frames a second
    quint16 channels = 2;       ///< samples a frame
    quint16 bitsPerSample = 16; ///< width of the source; the block is 32 bits always

    bool operator==(const AudioFormat&) const = default;
};

/// Audio between all codecs: signed 32-bit values, left-justified, frame after
/// frame, the channels of a frame side by side.
struct AudioBlock {
    QList<qint32> samples;
    quint64 frames = 0;
};

#pragma once

#include "codecs/DecoderRun.h"

#include <QHash>

/// What independent programs find in an MPEG-4 file.
struct M4aFacts {
    QHash<QByteArray, QByteArray> values; ///< by ffprobe's names, of the stream and of the file

    QByteArray text(const char* name) const { return values.value(name); }
    qint64 number(const char* name) const { return text(name).toLongLong(); }
};

/// Also expects that a full decoding finds nothing to complain about.
M4aFacts inspectM4a(const QString& name);

/// Expects a file for ordinary players with one stereo stream at 44,100 Hz.
/// @param codec  by ffprobe's name
M4aFacts expectStereoM4a(const QString& name, const char* codec);

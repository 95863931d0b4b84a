#pragma once

#include "codecs/DecoderFiles.h"

/// Writes one file of several streams, one behind the other, each of so many frames
/// of audio in its own format. The kind is that of the name's ending; MPEG audio and
/// Ogg can be chained so.
void makeChain(const QString& name, const QList<AudioFormat>& formats, quint64 frames);

#pragma once

#include "codecs/DecoderRun.h"

/// Valid files of every kind that is read, made by independent encoders, or by
/// hand where none exists.
namespace decoderfiles {

/// Writes a file of the kind that the name ends in, from 16-bit stereo audio at
/// 44100 Hz. One-bit files hold that many bytes of each channel instead.
void make(const QString& name, quint64 frames);

/// The same audio in the codec that FFmpeg knows by this name, with a picture of
/// 8 by 8 points as the cover.
void makeWithCover(const QString& name, const char* codec, quint64 frames);

/// Runs an encoder on a WAVE file of these samples.
void encode(const QString& name, const AudioFormat& format, const QList<qint32>& samples);

/// Samples of music-like smoothness, so that lossy kinds keep to them.
QList<qint32> audio(quint64 frames, int channels);

struct DsfParts {
    quint32 formatId = 0;
    quint32 channels = 2;
    quint32 frequency = 2822400;
    quint32 bits = 1;
    quint32 blockBytes = 4096;
    quint64 dataChunkBytes = 0; ///< 0: as large as the data
};
/// The data as they stand in the file: blocks of one channel each.
QByteArray dsf(const DsfParts& parts, const QByteArray& data);

/// A DSDIFF file whose property chunk holds what is given, and these sound data.
QByteArray dff(const QByteArray& properties, const QByteArray& data);
QByteArray dffChunk(const char* id, const QByteArray& body);
QByteArray dffProperties(quint32 frequency, quint16 channels);

/// Seeded bytes that stand for one-bit audio.
QByteArray bits(qsizetype bytes, quint32 seed);

} // namespace decoderfiles

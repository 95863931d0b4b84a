#pragma once

#include <QList>
#include <QtGlobal>

/// Synthesised audio, interleaved, the same on every run.
namespace audiomaker {

/// A sine of the given height (1.0 is full scale) in all channels, as
/// left-justified 32-bit values.
QList<qint32> sine(quint64 frames, int channels, double hertz, quint32 sampleRate, double height = 0.5);

/// 0, step, 2 * step, ... over all samples, wrapping at the 32-bit limits.
QList<qint32> ramp(quint64 samples, quint32 step);

/// White noise over the whole 32-bit range.
QList<qint32> noise(quint64 samples, quint32 seed);

/// The top 16 bits of each sample.
QList<qint16> to16(const QList<qint32>& samples);

/// 16-bit values made left-justified 32-bit ones.
QList<qint32> from16(const QList<qint16>& samples);

} // namespace audiomaker

#include "support/AudioMaker.h"

#include <cmath>
#include <numbers>

namespace audiomaker {

QList<qint32> sine(quint64 frames, int channels, double hertz, quint32 sampleRate, double height)
{
    QList<qint32> samples;
    samples.reserve(static_cast<qsizetype>(frames) * channels);
    const double step = 2 * std::numbers::pi * hertz / sampleRate;
    for (quint64 frame = 0; frame < frames; ++frame) {
        const double value = height * 2147483647.0 * std::sin(step * static_cast<double>(frame));
        for (int channel = 0; channel < channels; ++channel)
            samples.append(static_cast<qint32>(std::lround(value)));
    }
    return samples;
}

QList<qint32> ramp(quint64 samples, quint32 step)
{
    QList<qint32> values;
    values.reserve(static_cast<qsizetype>(samples));
    quint32 value = 0;
    for (quint64 i = 0; i < samples; ++i, value += step)
        values.append(static_cast<qint32>(value));
    return values;
}

QList<qint32> noise(quint64 samples, quint32 seed)
{
    QList<qint32> values;
    values.reserve(static_cast<qsizetype>(samples));
    // SplitMix64: each step gives 32 well mixed bits.
    quint64 state = seed;
    for (quint64 i = 0; i < samples; ++i) {
        state += 0x9E3779B97F4A7C15u;
        quint64 mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
        values.append(static_cast<qint32>(static_cast<quint32>(mixed >> 32)));
    }
    return values;
}

QList<qint16> to16(const QList<qint32>& samples)
{
    QList<qint16> cut;
    cut.reserve(samples.size());
    for (const qint32 sample : samples)
        cut.append(static_cast<qint16>(sample >> 16));
    return cut;
}

QList<qint32> from16(const QList<qint16>& samples)
{
    QList<qint32> wide;
    wide.reserve(samples.size());
    for (const qint16 sample : samples)
        wide.append(qint32{sample} * 65536);
    return wide;
}

} // namespace audiomaker

#include "codecs/media/AacDecimator.h"

#include "codecs/BlockPieces.h"
#include "codecs/KaiserWindow.h"

#include <algorithm>
#include <cmath>
#include <numbers>

// The input is held in periods of `factor` frames, one for each output, and laid
// out in rows: one row a channel and place within the period. What neighbouring
// outputs meet at the same tap lies side by side there, so that their sums run
// next to each other, each in its own order.

namespace {

constexpr int tapsPerFactor = 64;
// Whole periods that an output meets besides the one that it ends.
constexpr int pastPeriods = tapsPerFactor;
constexpr int piecePeriods = 64;
// Outputs whose sums run side by side; the last, unfinished group of them reads on
// over values that no one uses.
constexpr int lanes = 16;
constexpr std::ptrdiff_t rowLength = pastPeriods + piecePeriods + lanes;

std::vector<double> designLowPass(int factor)
{
    constexpr double twoPi = 2 * std::numbers::pi;
    constexpr double beta = 10.0;
    constexpr int seriesTerms = 49;

    const int taps = factor * tapsPerFactor + 1;
    const int centre = taps / 2;
    const double cutoff = 0.45 / factor;
    std::vector<double> designed(static_cast<std::size_t>(taps));
    double sum = 0.0;
    for (int i = 0; i < taps; ++i) {
        const double d = i - centre;
        const double lowPass =
            i == centre ? 2.0 * cutoff : std::sin(d * cutoff * twoPi) / (d * std::numbers::pi);
        const double t = 2.0 * i / (taps - 1) - 1.0;
        const double value = lowPass * kaiserWindow(t, beta, seriesTerms);
        designed[static_cast<std::size_t>(i)] = value;
        sum += value;
    }
    for (double& coefficient : designed)
        coefficient /= sum;
    return designed;
}

qint32 toSample(double value)
{
    return static_cast<qint32>(std::nearbyint(std::clamp(value, -2147483648.0, 2147483647.0)));
}

} // namespace

AacDecimator::AacDecimator(int channelCount, int rateFactor)
    : channels(channelCount), factor(rateFactor), coefficients(designLowPass(rateFactor)),
      rows(static_cast<std::size_t>(rowLength) * static_cast<std::size_t>(rateFactor)
           * static_cast<std::size_t>(channelCount))
{
}

AudioBlock AacDecimator::run(const AudioBlock& block)
{
    const auto step = static_cast<quint64>(factor);
    quint64 waiting = heldFrames(block, static_cast<quint16>(channels));
    AudioBlock reduced;
    reduced.frames = (static_cast<quint64>(phase) + waiting) / step;
    reduced.samples.resize(static_cast<qsizetype>(reduced.frames) * channels);

    const qint32* in = block.samples.constData();
    qint32* out = reduced.samples.data();
    while (waiting > 0) {
        const int room = piecePeriods * factor - phase;
        const int frames = static_cast<int>(std::min<quint64>(waiting, static_cast<quint64>(room)));
        store(in, frames);
        const int periods = (phase + frames) / factor;
        sumUp(periods, out);
        keepPast(periods);
        phase = (phase + frames) % factor;
        in += std::ptrdiff_t{frames} * channels;
        out += std::ptrdiff_t{periods} * channels;
        waiting -= static_cast<quint64>(frames);
    }
    return reduced;
}

double* AacDecimator::row(int channel, int place)
{
    return rows.data() + (std::ptrdiff_t{channel} * factor + place) * rowLength;
}

void AacDecimator::store(const qint32* samples, int frames)
{
    for (int channel = 0; channel < channels; ++channel) {
        int place = phase;
        int period = pastPeriods;
        for (int frame = 0; frame < frames; ++frame) {
            row(channel, place)[period] = samples[std::ptrdiff_t{frame} * channels + channel];
            if (++place == factor) {
                place = 0;
                ++period;
            }
        }
    }
}

void AacDecimator::sumUp(int periods, qint32* out)
{
    for (int channel = 0; channel < channels; ++channel) {
        for (int first = 0; first < periods; first += lanes) {
            // The oldest sample is the last one of the period before the others.
            double sums[lanes];
            const double* oldest = row(channel, factor - 1) + first;
            for (int lane = 0; lane < lanes; ++lane)
                sums[lane] = 0.0 + coefficients[0] * oldest[lane];
            const double* coefficient = coefficients.data() + 1;
            for (int period = 1; period <= pastPeriods; ++period) {
                const double* samples = row(channel, 0) + first + period;
                for (int place = 0; place < factor; ++place, samples += rowLength, ++coefficient) {
                    for (int lane = 0; lane < lanes; ++lane)
                        sums[lane] += *coefficient * samples[lane];
                }
            }
            const int wanted = std::min(lanes, periods - first);
            for (int lane = 0; lane < wanted; ++lane)
                out[std::ptrdiff_t{first + lane} * channels + channel] = toSample(sums[lane]);
        }
    }
}

/// Moves the end of a piece, with the period that is not full yet, to where the
/// next piece looks for it.
void AacDecimator::keepPast(int periods)
{
    if (periods == 0)
        return;
    for (int number = 0; number < channels * factor; ++number) {
        double* values = row(0, number);
        std::copy_n(values + periods, pastPeriods + 1, values);
    }
}

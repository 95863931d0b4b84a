// The loudness meter against libebur128 over the same memory, and the
// oversampler against the loop that its definition describes.

#include "ChildRun.h"
#include "Measure.h"
#include "Options.h"

#include "codecs/KaiserWindow.h"
#include "codecs/Oversampler.h"
#include "metadata/LoudnessMeter.h"

#include <QCoreApplication>

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr quint32 rate = 44100;
constexpr quint64 blockFrames = 4096; // as the decoders deliver them
constexpr double loudnessTolerance = 0.1;

struct Plan {
    int seconds = 600;
    int oversampledSeconds = 10;
    int pairs = 9;
};

QList<qint32> music(quint64 frames, int channels)
{
    std::mt19937 random(5);
    QList<qint32> samples;
    samples.reserve(static_cast<qsizetype>(frames) * channels);
    for (quint64 frame = 0; frame < frames; ++frame) {
        const double time = static_cast<double>(frame) / rate;
        const double swell = 0.1 + 0.3 * std::pow(std::sin(0.3 * time), 2);
        for (int channel = 0; channel < channels; ++channel) {
            const double tone = std::sin(2 * std::numbers::pi * (220 + 110 * channel) * time);
            const double hiss = static_cast<double>(random()) / std::mt19937::max() - 0.5;
            samples.append(static_cast<qint32>(swell * (tone + hiss) * std::numeric_limits<qint32>::max()));
        }
    }
    return samples;
}

template<typename Work>
void forEachBlock(const QList<qint32>& samples, int channels, const Work& work)
{
    const auto frames = static_cast<quint64>(samples.size() / channels);
    for (quint64 frame = 0; frame < frames; frame += blockFrames)
        work(samples.constData() + frame * static_cast<quint64>(channels),
             std::min(blockFrames, frames - frame));
}

struct Measured {
    double loudness = 0;
    double peak = 0;
};

Measured measureOurs(const QList<qint32>& samples, int channels)
{
    LoudnessMeter meter(rate, channels);
    forEachBlock(samples, channels, [&](const qint32* block, quint64 frames) { meter.add(block, frames); });
    meter.finish();
    return {meter.gatedLoudness(), meter.peak};
}

struct StateCloser {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};

Measured measureOther(const QList<qint32>& samples, int channels)
{
    const std::unique_ptr<ebur128_state, StateCloser> state(
        ebur128_init(static_cast<unsigned>(channels), rate, EBUR128_MODE_I | EBUR128_MODE_SAMPLE_PEAK));
    for (int channel = 0; channel < channels; ++channel) // all weigh the same
        ebur128_set_channel(state.get(), static_cast<unsigned>(channel), EBUR128_LEFT);
    forEachBlock(samples, channels, [&](const qint32* block, quint64 frames) {
        if (ebur128_add_frames_int(state.get(), block, frames) != EBUR128_SUCCESS)
            std::abort();
    });
    Measured measured;
    ebur128_loudness_global(state.get(), &measured.loudness);
    for (int channel = 0; channel < channels; ++channel) {
        double peak = 0;
        ebur128_sample_peak(state.get(), static_cast<unsigned>(channel), &peak);
        measured.peak = std::max(measured.peak, peak);
    }
    return measured;
}

/// @param seconds  of audio
void report(const RowName& name, const QList<QList<RunCost>>& costs, double seconds, const Bound& bound)
{
    const QList<double> ours = processorOf(costs[0]);
    printRow(name, ours, processorOf(costs[1]), bound);
    printNote(QStringLiteral("times as fast as the audio plays"), QStringLiteral("x"),
              seconds / median(ours));
}

bool compareMeters(const QString& what, const QList<qint32>& samples, int channels, int pairs)
{
    Measured ours;
    Measured other;
    const auto costs =
        runInTurn(pairs, {[&] { return processorCost([&] { ours = measureOurs(samples, channels); }); },
                          [&] { return processorCost([&] { other = measureOther(samples, channels); }); }});
    report({QStringLiteral("loudness, ") + what, QStringLiteral("libebur128"), QStringLiteral("s")}, costs,
           static_cast<double>(samples.size() / channels) / rate, bounds::meter);
    // The other side calls silence minus infinity, and takes full scale for 2^31 - 1.
    const bool agree = std::abs(ours.loudness - std::max(other.loudness, -70.0)) <= loudnessTolerance
                       && std::abs(ours.peak - other.peak) < 1e-6;
    if (!agree)
        std::fprintf(stderr, "  the results differ: %.3f and %.3f LUFS, peaks %.7f and %.7f\n", ours.loudness,
                     other.loudness, ours.peak, other.peak);
    return agree;
}

// One channel of the filter with every zero in its place.
class PlainChannel {
public:
    explicit PlainChannel(quint32 raise) : factor(raise), workArea(tapCount - 1)
    {
        constexpr double centre = (tapCount - 1) / 2.0;
        double sum = 0;
        for (std::size_t i = 0; i < tapCount; ++i) {
            const double n = static_cast<double>(i) - centre;
            const double cutoff = 1.0 / (2.0 * raise);
            const double lowPass = std::sin(cutoff * 6.283185307179586 * n) / (n * 3.141592653589793);
            const double t = n / centre;
            const double value =
                lowPass * (besselI0(8.6 * std::sqrt(std::max(0.0, 1 - t * t))) / besselI0(8.6));
            taps[i] = static_cast<float>(value);
            sum += value;
        }
        for (float& tap : taps)
            tap = static_cast<float>(static_cast<double>(tap) * (raise / sum));
    }

    void run(const qint32* samples, std::size_t frames, std::size_t step, qint32* out)
    {
        const std::size_t outputs = frames * factor;
        workArea.resize(tapCount - 1);
        workArea.resize(tapCount - 1 + outputs);
        for (std::size_t i = 0; i < frames; ++i)
            workArea[tapCount - 1 + i * factor] = static_cast<float>(samples[i * step]) * 4.656613e-10f;
        for (std::size_t j = 0; j < outputs; ++j) {
            double sum = 0;
            for (std::size_t k = 0; k < tapCount; ++k)
                sum += static_cast<double>(taps[k]) * static_cast<double>(workArea[j + tapCount - 1 - k]);
            constexpr float fullScale = 2147483648.0f;
            const float scaled = std::clamp(static_cast<float>(sum) * fullScale, -fullScale, fullScale);
            out[j * step] =
                scaled == fullScale ? std::numeric_limits<qint32>::min() : static_cast<qint32>(scaled);
        }
        std::copy(workArea.end() - (tapCount - 1), workArea.end(), workArea.begin());
    }

private:
    static constexpr std::size_t tapCount = 384;
    std::size_t factor;
    float taps[tapCount];
    std::vector<float> workArea;
};

bool compareOversamplers(const QList<qint32>& samples, quint32 factor, int pairs)
{
    constexpr int channels = 2;
    QList<qint32> ours;
    QList<qint32> other;
    const auto runOurs = [&] {
        ours.clear();
        Oversampler oversampler(channels, factor);
        forEachBlock(samples, channels, [&](const qint32* block, quint64 frames) {
            ours += oversampler.run({QList<qint32>(block, block + frames * channels), frames}).samples;
        });
    };
    const auto runOther = [&] {
        other.clear();
        std::vector<PlainChannel> filters(channels, PlainChannel(factor));
        forEachBlock(samples, channels, [&](const qint32* block, quint64 frames) {
            QList<qint32> raised(static_cast<qsizetype>(frames * factor * channels));
            for (std::size_t channel = 0; channel < channels; ++channel)
                filters[channel].run(block + channel, frames, channels, raised.data() + channel);
            other += raised;
        });
    };
    const auto costs =
        runInTurn(pairs, {[&] { return processorCost(runOurs); }, [&] { return processorCost(runOther); }});
    report(
        {QStringLiteral("oversampling by %1").arg(factor), QStringLiteral("plain loop"), QStringLiteral("s")},
        costs, static_cast<double>(samples.size() / channels) / rate, bounds::oversampler);
    if (ours != other)
        std::fprintf(stderr, "  the results differ\n");
    return ours == other;
}

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("seconds", "Audio to measure.", plan.seconds);
    options.number("oversampled", "Seconds of audio to oversample.", plan.oversampledSeconds);
    options.number("pairs", "Pairs of runs for each row.", plan.pairs);
    options.read(application);
    return plan;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Plan plan = readPlan(application);
    const auto frames = static_cast<quint64>(plan.seconds) * rate;

    printHead();
    bool agree = true;
    for (const int channels : {1, 2, 6})
        agree &= compareMeters(QStringLiteral("channels: %1").arg(channels), music(frames, channels),
                               channels, plan.pairs);
    agree &=
        compareMeters(QStringLiteral("stereo silence"),
                      music(rate, 2) + QList<qint32>(static_cast<qsizetype>(frames) * 2, 0), 2, plan.pairs);
    const QList<qint32> shorter = music(static_cast<quint64>(plan.oversampledSeconds) * rate, 2);
    for (const quint32 factor : {2u, 4u})
        agree &= compareOversamplers(shorter, factor, plan.pairs);
    return agree ? EXIT_SUCCESS : EXIT_FAILURE;
}

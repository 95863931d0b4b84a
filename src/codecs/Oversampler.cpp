#include "codecs/Oversampler.h"

#include "codecs/FloatSample.h"
#include "codecs/KaiserWindow.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>

namespace {

// A block beyond two gigabytes is refused rather than asked of the system.
constexpr std::size_t mostSamples = std::size_t{1} << 29;
// Values whose sums run side by side.
constexpr std::size_t lanes = 16;

template<std::size_t tapCount>
std::array<double, tapCount> designFilter(quint32 factor)
{
    constexpr double twoPi = 2 * std::numbers::pi;
    constexpr double centre = 191.5;
    constexpr double beta = 8.6;
    const double cutoff = 1.0 / (2.0 * factor);

    std::array<float, tapCount> designed{};
    double sum = 0.0;
    for (std::size_t i = 0; i < tapCount; ++i) {
        const double n = static_cast<double>(i) - centre;
        const double lowPass = std::sin(cutoff * twoPi * n) / (n * std::numbers::pi);
        const double value = lowPass * kaiserWindow(n / centre, beta);
        designed[i] = static_cast<float>(value);
        sum += value;
    }
    std::array<double, tapCount> taps;
    std::transform(designed.begin(), designed.end(), taps.begin(),
                   [&](float tap) { return double{static_cast<float>(double{tap} * (factor / sum))}; });
    return taps;
}

} // namespace

// The zeroes between the samples are not stored: what they add to a sum is 0,
// which changes no sum that has begun with +0. So each of the `factor` outputs of
// an input sample meets every factor-th tap only, in the order of the taps.
struct Oversampler::OversamplerChannel {
    OversamplerChannel(quint32 raise, const std::array<double, tapCount>& shared)
        : factor(raise), pastSamples((tapCount - 1) / raise), taps(shared), input(pastSamples)
    {
    }

    void run(const qint32* samples, std::size_t count, std::size_t step, qint32* out)
    {
        load(samples, count, step);
        for (std::size_t first = 0; first < count; first += lanes) {
            const std::size_t wanted = std::min(lanes, count - first);
            for (std::size_t phase = 0; phase < factor; ++phase) {
                double sums[lanes] = {};
                sum(first, phase, sums);
                for (std::size_t lane = 0; lane < wanted; ++lane)
                    out[((first + lane) * factor + phase) * step] =
                        sampleFromFloat(static_cast<float>(sums[lane]));
            }
        }
        std::copy_n(input.begin() + static_cast<std::ptrdiff_t>(count), pastSamples, input.begin());
    }

private:
    void load(const qint32* samples, std::size_t count, std::size_t step)
    {
        constexpr float scale = 4.656613e-10f;
        // The last, unfinished group of lanes reads on over values that no one uses.
        input.resize(pastSamples + count + lanes);
        for (std::size_t i = 0; i < count; ++i)
            input[pastSamples + i] = double{static_cast<float>(samples[i * step]) * scale};
    }

    void sum(std::size_t first, std::size_t phase, double (&sums)[lanes]) const
    {
        const double* newest = input.data() + pastSamples + first;
        for (std::size_t tap = phase; tap < tapCount; tap += factor, --newest) {
            const double coefficient = taps[tap];
            for (std::size_t lane = 0; lane < lanes; ++lane)
                sums[lane] += coefficient * newest[lane];
        }
    }

    std::size_t factor;
    std::size_t pastSamples; ///< that the first output of a block still meets
    const std::array<double, tapCount>& taps;
    std::vector<double> input; ///< past, then the block
};

Oversampler::Oversampler(int channelCount, quint32 raise)
    : channels(std::max(channelCount, 1)), factor(std::max(raise, 1u)), taps(designFilter<tapCount>(factor))
{
    for (int channel = 0; channel < channels; ++channel)
        filters.push_back(std::make_unique<OversamplerChannel>(factor, taps));
}

Oversampler::~Oversampler() = default;

AudioBlock Oversampler::run(const AudioBlock& block)
{
    const auto width = static_cast<std::size_t>(channels);
    const std::size_t frames = static_cast<std::size_t>(block.samples.size()) / width;
    if (frames > mostSamples / factor / width)
        throw std::bad_alloc();

    AudioBlock raised;
    raised.frames = quint64{frames} * factor;
    raised.samples.resize(static_cast<qsizetype>(raised.frames * width));
    for (std::size_t channel = 0; channel < width; ++channel)
        filters[channel]->run(block.samples.constData() + channel, frames, width,
                              raised.samples.data() + channel);
    return raised;
}

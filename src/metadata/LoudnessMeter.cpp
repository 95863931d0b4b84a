#include "metadata/LoudnessMeter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace {

constexpr double sampleScale = 4.656612873077393e-10;
constexpr double silence = -70.0;
constexpr double relativeGate = -10.0;
constexpr double referenceLoudness = -18.0;
constexpr quint32 defaultRate = 44100;
constexpr quint32 blocksPerSecond = 10;
constexpr qsizetype blocksPerGate = 4;

double loudnessOf(double meanSquare)
{
    return 10.0 * std::log10(meanSquare) - 0.691;
}

/// The loudness of the mean of the blocks above a gate.
double loudnessAbove(const QList<double>& blocks, double gate)
{
    double sum = 0.0;
    qsizetype count = 0;
    for (const double block : blocks) {
        if (block > 0.0 && loudnessOf(block) > silence && loudnessOf(block) > gate) {
            sum += block;
            ++count;
        }
    }
    return count == 0 ? silence : loudnessOf(sum / static_cast<double>(count));
}

} // namespace

LoudnessMeter::LoudnessMeter(quint32 sampleRate, int channelCount)
    : channels(std::max(channelCount, 1)), hop(std::max(sampleRate / blocksPerSecond, 1u)),
      pairs((static_cast<std::size_t>(channels) + 1) / 2)
{
    const double rate = sampleRate == 0 ? defaultRate : sampleRate;
    const auto design = [rate](double frequency, double q, Biquad& stage) {
        const double k = std::tan(std::numbers::pi * frequency / rate);
        const double a0 = 1.0 + k / q + k * k;
        stage.a1 = 2.0 * (k * k - 1.0) / a0;
        stage.a2 = (1.0 - k / q + k * k) / a0;
        return std::pair(k, a0);
    };

    constexpr double shelfQ = 0.7071752369554196;
    const auto [k, a0] = design(1681.974450955533, shelfQ, shelf);
    const double high = std::pow(10.0, 3.999843853973347 / 20.0);
    const double band = std::pow(high, 0.4996667741545416);
    shelf.b0 = (high + band * k / shelfQ + k * k) / a0;
    shelf.b1 = 2.0 * (k * k - high) / a0;
    shelf.b2 = (high - band * k / shelfQ + k * k) / a0;

    design(38.13547087602444, 0.5003270373238773, highPass);
    highPass.b0 = 1.0;
    highPass.b1 = -2.0;
    highPass.b2 = 1.0;
}

void LoudnessMeter::add(const qint32* samples, quint64 count)
{
    while (count > 0) {
        const quint64 piece = std::min(count, hop - frames);
        if (!isSettledIn(samples, piece))
            filterAny(samples, piece);
        samples += piece * static_cast<quint64>(channels);
        count -= piece;
        frames += piece;
        if (frames == hop)
            finishBlock();
    }
}

void LoudnessMeter::finishBlock()
{
    blocks.append(energy / static_cast<double>(hop));
    energy = 0.0;
    frames = 0;
    if (blocks.size() >= blocksPerGate)
        gated.append(std::accumulate(blocks.end() - blocksPerGate, blocks.end(), 0.0) / blocksPerGate);
}

// In digital silence the filters come to rest on the smallest numbers there are,
// which processors are slow with. A frame that leaves them as they are and adds
// nothing stands for all the silent ones after it.
bool LoudnessMeter::isSettledIn(const qint32* samples, quint64 count)
{
    const quint64 values = count * static_cast<quint64>(channels);
    if (!std::all_of(samples, samples + values, [](qint32 sample) { return sample == 0; }))
        return false;
    const std::vector<ChannelPair> pairsBefore = pairs;
    const double energyBefore = energy;
    energy = 0.0;
    filterAny(samples, 1);
    const bool settled = energy == 0.0 && pairs == pairsBefore;
    energy = energyBefore;
    pairs = pairsBefore;
    return settled;
}

void LoudnessMeter::filterAny(const qint32* samples, quint64 count)
{
    switch (channels) {
    case 1:
        return filter<1>(samples, count);
    case 2:
        return filter<2>(samples, count);
    default:
        return filter<0>(samples, count);
    }
}

template<int fixedChannels>
void LoudnessMeter::filter(const qint32* samples, quint64 count)
{
    const int width = fixedChannels == 0 ? channels : fixedChannels;
    const Biquad first = shelf;
    const Biquad second = highPass;
    // Of up to two channels the memory stays in registers.
    ChannelPair onlyPair = pairs.front();
    double sum = energy;
    double highest[2] = {peak, peak};

    for (quint64 frame = 0; frame < count; ++frame, samples += width) {
        for (int channel = 0; channel < width; channel += 2) {
            ChannelPair& pair = fixedChannels == 0 ? pairs[static_cast<std::size_t>(channel / 2)] : onlyPair;
            const int lanes = std::min(width - channel, 2);
            const double in[2] = {samples[channel] * sampleScale,
                                  lanes == 2 ? samples[channel + 1] * sampleScale : 0.0};
            double out[2];
            for (int lane = 0; lane < 2; ++lane) {
                const double x = in[lane];
                highest[lane] = std::max(highest[lane], std::abs(x));
                const double y = x * first.b0 + pair.shelfZ1[lane];
                pair.shelfZ1[lane] = x * first.b1 - y * first.a1 + pair.shelfZ2[lane];
                pair.shelfZ2[lane] = x * first.b2 - y * first.a2;
                out[lane] = y * second.b0 + pair.highPassZ1[lane];
                pair.highPassZ1[lane] = y * second.b1 - out[lane] * second.a1 + pair.highPassZ2[lane];
                pair.highPassZ2[lane] = y * second.b2 - out[lane] * second.a2;
            }
            for (int lane = 0; lane < lanes; ++lane)
                sum += out[lane] * out[lane];
        }
    }

    if (fixedChannels != 0)
        pairs.front() = onlyPair;
    energy = sum;
    peak = std::max(highest[0], highest[1]);
}

void LoudnessMeter::finish()
{
    if (!gated.isEmpty())
        return;
    const double total =
        energy + static_cast<double>(hop) * std::accumulate(blocks.begin(), blocks.end(), 0.0);
    const quint64 count = frames + hop * static_cast<quint64>(blocks.size());
    if (count > 0)
        gated.append(total / static_cast<double>(count));
}

double LoudnessMeter::gatedLoudness() const
{
    return integratedLoudness(gated);
}

double integratedLoudness(const QList<double>& blocks)
{
    // With nothing above the first gate, nothing is above the second.
    return loudnessAbove(blocks, loudnessAbove(blocks, silence) + relativeGate);
}

double replayGainFor(double loudness)
{
    return referenceLoudness - loudness;
}

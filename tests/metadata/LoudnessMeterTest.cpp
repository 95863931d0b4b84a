#include "metadata/LoudnessMeter.h"

#include "support/AudioMaker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// The measurement as its definition reads, one value after another.
class PlainMeter {
public:
    PlainMeter(quint32 rate, int channelCount)
        : channels(channelCount), hop(rate / 10 == 0 ? 1 : rate / 10),
          shelf(static_cast<std::size_t>(channelCount)), highPass(static_cast<std::size_t>(channelCount))
    {
        const double fs = rate == 0 ? 44100 : rate;
        double k = std::tan(3.141592653589793 * 1681.974450955533 / fs);
        double q = 0.7071752369554196;
        const double vh = std::pow(10.0, 3.999843853973347 / 20.0);
        const double vb = std::pow(vh, 0.4996667741545416);
        double a0 = 1.0 + k / q + k * k;
        for (Stage& s : shelf)
            s = {(vh + vb * k / q + k * k) / a0, 2.0 * (k * k - vh) / a0, (vh - vb * k / q + k * k) / a0,
                 2.0 * (k * k - 1.0) / a0, (1.0 - k / q + k * k) / a0};
        k = std::tan(3.141592653589793 * 38.13547087602444 / fs);
        q = 0.5003270373238773;
        a0 = 1.0 + k / q + k * k;
        for (Stage& s : highPass)
            s = {1.0, -2.0, 1.0, 2.0 * (k * k - 1.0) / a0, (1.0 - k / q + k * k) / a0};
    }

    void add(const QList<qint32>& samples)
    {
        for (qsizetype i = 0; i + channels <= samples.size(); i += channels) {
            for (int channel = 0; channel < channels; ++channel) {
                const double x = samples[i + channel] * 4.656612873077393e-10;
                if (std::fabs(x) > peak)
                    peak = std::fabs(x);
                const double shelved = shelf[static_cast<std::size_t>(channel)].run(x);
                const double y = highPass[static_cast<std::size_t>(channel)].run(shelved);
                energy += y * y;
            }
            if (++frames < hop)
                continue;
            blocks.append(energy / static_cast<double>(hop));
            energy = 0;
            frames = 0;
            const qsizetype n = blocks.size();
            if (n >= 4)
                gated.append((blocks[n - 4] + blocks[n - 3] + blocks[n - 2] + blocks[n - 1]) / 4);
        }
    }

    QList<double> gated;
    QList<double> blocks;
    double peak = 0;
    double energy = 0;
    quint64 frames = 0;

private:
    struct Stage {
        double b0 = 0, b1 = 0, b2 = 0, a1 = 0, a2 = 0, z1 = 0, z2 = 0;

        double run(double x)
        {
            const double y = x * b0 + z1;
            z1 = x * b1 - y * a1 + z2;
            z2 = x * b2 - y * a2;
            return y;
        }
    };

    int channels;
    quint64 hop;
    std::vector<Stage> shelf;
    std::vector<Stage> highPass;
};

void addAll(LoudnessMeter& meter, const QList<qint32>& samples, int channels)
{
    meter.add(samples.constData(), static_cast<quint64>(samples.size() / channels));
}

// With NaN equal to itself, so that unstable filters can be compared too.
void expectSameBits(const QList<double>& ours, const QList<double>& plain)
{
    ASSERT_EQ(ours.size(), plain.size());
    for (qsizetype i = 0; i < ours.size(); ++i)
        ASSERT_TRUE(ours[i] == plain[i] || (std::isnan(ours[i]) && std::isnan(plain[i])))
            << i << ": " << ours[i] << " and " << plain[i];
}

// The mean square whose loudness is this.
double meanSquareOf(double loudness)
{
    return std::pow(10.0, (loudness + 0.691) / 10.0);
}

QList<double> measureGated(quint32 rate, quint64 frames)
{
    LoudnessMeter meter(rate, 1);
    addAll(meter, audiomaker::sine(frames, 1, 1000, rate), 1);
    return meter.gated;
}

} // namespace

TEST(LoudnessMeter, EveryChannelCountGivesTheBitsOfThePlainSums)
{
    for (const int channels : {1, 2, 3, 5, 6, 8, 65}) {
        for (const quint32 rate : {8000u, 44100u, 96000u}) {
            SCOPED_TRACE(std::to_string(channels) + " channels at " + std::to_string(rate));
            const QList<qint32> samples = audiomaker::noise(rate / 2 * static_cast<quint64>(channels) + 7, 5);
            LoudnessMeter meter(rate, channels);
            PlainMeter plain(rate, channels);
            addAll(meter, samples, channels);
            plain.add(samples);
            ASSERT_EQ(plain.gated.size(), 2);
            expectSameBits(meter.gated, plain.gated);
            EXPECT_EQ(meter.peak, plain.peak);
        }
    }
}

TEST(LoudnessMeter, BlocksOfAnySizeGiveTheSameBits)
{
    const QList<qint32> samples = audiomaker::noise(2 * 30000, 9);
    LoudnessMeter whole(44100, 2);
    addAll(whole, samples, 2);
    LoudnessMeter pieces(44100, 2);
    quint64 done = 0;
    for (quint64 i = 0; done < 30000; ++i) {
        const quint64 frames = std::min<quint64>((i * 37) % 5000, 30000 - done);
        pieces.add(samples.constData() + 2 * done, frames);
        done += frames;
    }
    ASSERT_FALSE(whole.gated.isEmpty());
    EXPECT_EQ(pieces.gated, whole.gated);
    EXPECT_EQ(pieces.peak, whole.peak);
}

TEST(LoudnessMeter, SilenceBetweenSoundsLeavesNoTraceInTheBits)
{
    // Long enough for the filters to come to rest, and one side alone for a while.
    QList<qint32> samples(2 * 2000, 0);
    samples += audiomaker::noise(2 * 9000, 3);
    samples += QList<qint32>(2 * 500000, 0);
    samples += audiomaker::noise(2 * 3000, 4);
    for (qsizetype i = 0; i < 400000; ++i)
        samples << (i == 399999 ? 1 : 0) << 0;
    samples += audiomaker::noise(2 * 30000, 8);

    LoudnessMeter meter(44100, 2);
    PlainMeter plain(44100, 2);
    addAll(meter, samples, 2);
    plain.add(samples);
    expectSameBits(meter.gated, plain.gated);
    EXPECT_EQ(meter.gatedLoudness(), integratedLoudness(plain.gated));
}

TEST(LoudnessMeter, OddRatesAreMeasuredAsTheSumsSay)
{
    const QList<qint32> samples = audiomaker::noise(600, 2);
    for (const quint32 rate : {0u, 1u, 9u, 10u, 19u, 20u, 2000u, 3364u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(rate);
        LoudnessMeter meter(rate, 2);
        PlainMeter plain(rate, 2);
        addAll(meter, samples, 2);
        plain.add(samples);
        expectSameBits(meter.gated, plain.gated);
        // 300 frames; 100 ms of them are at least one frame.
        const qsizetype hundredths = rate < 20 ? 300 : rate == 20 ? 150 : rate == 2000 ? 1 : 0;
        EXPECT_EQ(meter.gated.size(), std::max<qsizetype>(hundredths - 3, 0));
        meter.finish();
        EXPECT_FALSE(meter.gated.isEmpty());
    }
}

TEST(LoudnessMeter, FewerThanOneChannelCountAsOne)
{
    const QList<qint32> samples = audiomaker::noise(20000, 6);
    LoudnessMeter one(44100, 1);
    addAll(one, samples, 1);
    for (const int channels : {0, -1, std::numeric_limits<int>::min()}) {
        LoudnessMeter meter(44100, channels);
        addAll(meter, samples, 1);
        EXPECT_EQ(meter.gated, one.gated);
    }
    ASSERT_EQ(one.gated.size(), 1);
}

TEST(LoudnessMeter, ManyChannelsAreSummed)
{
    const QList<qint32> mono = audiomaker::noise(400, 6);
    QList<qint32> wide;
    for (const qint32 sample : mono)
        wide += QList<qint32>(65535, sample);
    LoudnessMeter one(1000, 1);
    LoudnessMeter many(1000, 65535);
    addAll(one, mono, 1);
    addAll(many, wide, 65535);
    ASSERT_EQ(many.gated.size(), 1);
    EXPECT_NEAR(many.gated[0] / one.gated[0], 65535, 65535e-9);
}

TEST(LoudnessMeter, TheFourthHundredMillisecondsMakeTheFirstGatingBlock)
{
    EXPECT_EQ(measureGated(44100, 4 * 4410 - 1).size(), 0);
    EXPECT_EQ(measureGated(44100, 4 * 4410).size(), 1);
    EXPECT_EQ(measureGated(44100, 5 * 4410 - 1).size(), 1);
    EXPECT_EQ(measureGated(44100, 5 * 4410).size(), 2);
    EXPECT_EQ(measureGated(44109, 4 * 4410).size(), 1); // a tenth is cut to whole frames
}

TEST(LoudnessMeter, FinishMakesOneBlockOfAShortMeasurement)
{
    const QList<qint32> samples = audiomaker::noise(2 * 13235, 11); // 300 ms and 5 frames
    LoudnessMeter meter(44100, 2);
    addAll(meter, samples, 2);
    EXPECT_TRUE(meter.gated.isEmpty());
    PlainMeter plain(44100, 2);
    plain.add(samples);
    ASSERT_EQ(plain.blocks.size(), 3);
    ASSERT_EQ(plain.frames, 5u);
    const double sum = plain.blocks[0] + plain.blocks[1] + plain.blocks[2];
    meter.finish();
    EXPECT_EQ(meter.gated, QList<double>{(plain.energy + 4410.0 * sum) / 13235.0});
    meter.finish();
    EXPECT_EQ(meter.gated.size(), 1);
}

TEST(LoudnessMeter, FinishLeavesALongMeasurementAndAnEmptyOne)
{
    LoudnessMeter lasting(44100, 1);
    addAll(lasting, audiomaker::noise(20000, 1), 1);
    const QList<double> before = lasting.gated;
    ASSERT_EQ(before.size(), 1);
    lasting.finish();
    EXPECT_EQ(lasting.gated, before);

    LoudnessMeter empty(44100, 2);
    empty.finish();
    EXPECT_TRUE(empty.gated.isEmpty());
    EXPECT_EQ(empty.gatedLoudness(), -70.0);
    EXPECT_EQ(empty.peak, 0.0);
}

TEST(LoudnessMeter, PeakIsTheLargestMagnitudeOfEitherSign)
{
    const auto peakOf = [](const QList<qint32>& samples, int channels) {
        LoudnessMeter meter(44100, channels);
        addAll(meter, samples, channels);
        return meter.peak;
    };
    EXPECT_EQ(peakOf({0, 0, 0}, 1), 0.0);
    EXPECT_EQ(peakOf({1 << 30, 5, -7}, 1), 0.5);
    EXPECT_EQ(peakOf({0, 0, 3, std::numeric_limits<qint32>::min()}, 2), 1.0);
    EXPECT_EQ(peakOf({0, 0, -(1 << 29), 0, 0, 1 << 28}, 3), 0.25);
    EXPECT_EQ(peakOf({std::numeric_limits<qint32>::max(), 0}, 2), 2147483647.0 / 2147483648.0);
}

TEST(IntegratedLoudness, SilentBlocksPassNoGate)
{
    EXPECT_EQ(integratedLoudness({}), -70.0);
    EXPECT_EQ(integratedLoudness({0.0, 0.0, 0.0}), -70.0);
    EXPECT_EQ(integratedLoudness({meanSquareOf(-70.1), meanSquareOf(-90)}), -70.0);
    EXPECT_NEAR(integratedLoudness({0.0, meanSquareOf(-20), 0.0}), -20.0, 1e-9);
    EXPECT_NEAR(integratedLoudness({meanSquareOf(-69.9)}), -69.9, 1e-9);
    EXPECT_EQ(integratedLoudness({std::numeric_limits<double>::quiet_NaN(), -1.0}), -70.0);
}

TEST(IntegratedLoudness, TheRelativeGateStandsTenBelowTheMeanOfWhatIsNotSilent)
{
    // The mean of one block at -20 and nine at -60 lies 10 dB below -20, near
    // enough; so the gate is at -40, and the quiet ones stay out.
    QList<double> blocks(9, meanSquareOf(-60));
    blocks.append(meanSquareOf(-20));
    EXPECT_NEAR(integratedLoudness(blocks), -20.0, 1e-9);

    // At -25 they stay in: the mean is that of all ten.
    blocks.fill(meanSquareOf(-25), 9);
    blocks.append(meanSquareOf(-20));
    const double mean = (9 * meanSquareOf(-25) + meanSquareOf(-20)) / 10;
    EXPECT_NEAR(integratedLoudness(blocks), 10 * std::log10(mean) - 0.691, 1e-9);

    // What the first gate holds back does not pull the second one down.
    const QList<double> loud{meanSquareOf(-20), meanSquareOf(-28)};
    const double expected = 10 * std::log10((loud[0] + loud[1]) / 2) - 0.691;
    EXPECT_NEAR(integratedLoudness(loud + QList<double>(1000, meanSquareOf(-71))), expected, 1e-9);
}

// Nine blocks of 1 and one of q, q standing r below the mean of all ten:
// q = r * (9 + q) / 10, so q = 9 * r / (10 - r).
TEST(IntegratedLoudness, ABlockCountsUpToTenBelowTheMean)
{
    const auto quietBlock = [](double decibels) {
        const double ratio = std::pow(10.0, -decibels / 10);
        return 9 * ratio / (10 - ratio);
    };
    const QList<double> loud(9, 1.0);
    const double inside = quietBlock(9.9);
    EXPECT_NEAR(integratedLoudness(loud + QList<double>{inside}), 10 * std::log10((9 + inside) / 10) - 0.691,
                1e-9);
    EXPECT_NEAR(integratedLoudness(loud + QList<double>{quietBlock(10.1)}), -0.691, 1e-9);
}

TEST(ReplayGainFor, ReferenceIsMinus18)
{
    EXPECT_EQ(replayGainFor(-18.0), 0.0);
    EXPECT_EQ(replayGainFor(-23.5), 5.5);
    EXPECT_EQ(replayGainFor(integratedLoudness({0.0, 0.0})), 52.0);
}

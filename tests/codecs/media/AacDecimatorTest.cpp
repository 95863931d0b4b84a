#include "codecs/media/AacDecimator.h"

#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

double seriesI0(double x)
{
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; k <= 49; ++k) {
        term *= (x / (2.0 * k)) * (x / (2.0 * k));
        sum += term;
        if (sum * 1e-12 > term)
            break;
    }
    return sum;
}

std::vector<double> lowPass(int factor)
{
    const int taps = factor * 64 + 1;
    const int m = taps / 2;
    const double fc = 0.45 / factor;
    std::vector<double> coefficients;
    double sum = 0.0;
    for (int i = 0; i < taps; ++i) {
        const double d = i - m;
        const double sinc = i == m ? 2.0 * fc : std::sin(d * fc * 6.283185307179586) / (d * std::numbers::pi);
        const double t = 2.0 * i / (taps - 1) - 1.0;
        coefficients.push_back(sinc
                               * (seriesI0(10.0 * std::sqrt(std::max(0.0, 1.0 - t * t))) / seriesI0(10.0)));
        sum += coefficients.back();
    }
    for (double& coefficient : coefficients)
        coefficient /= sum;
    return coefficients;
}

// The filter written out plainly: a ring a channel, and one sum an output.
struct PlainDecimator {
    PlainDecimator(int channelCount, int rateFactor)
        : channels(channelCount), factor(rateFactor), coefficients(lowPass(rateFactor)),
          history(coefficients.size() * static_cast<std::size_t>(channelCount))
    {
    }

    QList<qint32> run(const QList<qint32>& samples)
    {
        const std::size_t taps = coefficients.size();
        QList<qint32> result;
        for (qsizetype place = 0; place < samples.size(); place += channels) {
            for (int c = 0; c < channels; ++c)
                history[static_cast<std::size_t>(c) * taps + writeIndex] = samples[place + c];
            writeIndex = (writeIndex + 1) % taps;
            if (++phase < factor)
                continue;
            phase = 0;
            for (int c = 0; c < channels; ++c) {
                double sum = 0.0;
                for (std::size_t k = 0; k < taps; ++k) {
                    const double product =
                        coefficients[k]
                        * history[static_cast<std::size_t>(c) * taps + (writeIndex + k) % taps];
                    sum += product;
                }
                sum = std::clamp(sum, -2147483648.0, 2147483647.0);
                result.append(static_cast<qint32>(std::nearbyint(sum)));
            }
        }
        return result;
    }

    int channels;
    int factor;
    std::vector<double> coefficients;
    std::vector<double> history;
    std::size_t writeIndex = 0;
    int phase = 0;
};

QList<qint32> reduced(int channels, int factor, const QList<qint32>& samples)
{
    AacDecimator decimator(channels, factor);
    return decimator.run(makeBlock(samples, channels)).samples;
}

// The height of what comes out of a sine, behind the filter's start, as a part of full scale.
double heightAfter(int factor, double hertz, quint32 rate, double height)
{
    const QList<qint32> out = reduced(1, factor, audiomaker::sine(rate / 4, 1, hertz, rate, height));
    constexpr qsizetype filterStart = 200;
    double power = 0.0;
    for (qsizetype i = filterStart; i < out.size(); ++i)
        power += std::pow(out[i] / 2147483648.0, 2.0);
    return std::sqrt(2.0 * power / static_cast<double>(out.size() - filterStart));
}

double decibels(double ratio)
{
    return 20.0 * std::log10(std::max(ratio, 1e-12));
}

} // namespace

TEST(AacDecimator, EveryBitIsThatOfThePlainSum)
{
    for (const int channels : {1, 2}) {
        for (const int factor : {2, 3, 4, 7, 8, 16}) {
            // Longer than any piece inside, with an end in the middle of a period.
            const quint64 frames = static_cast<quint64>(factor) * 150 + 1;
            const QList<qint32> samples =
                audiomaker::noise(frames * static_cast<quint64>(channels), static_cast<quint32>(factor));
            PlainDecimator plain(channels, factor);
            EXPECT_EQ(reduced(channels, factor, samples), plain.run(samples)) << factor << " " << channels;
        }
    }
}

TEST(AacDecimator, HistoryAndPhaseRunAcrossBlocks)
{
    for (const int factor : {2, 3, 8}) {
        const QList<qint32> samples = audiomaker::noise(2 * 5000, 60u + static_cast<quint32>(factor));
        PlainDecimator plain(2, factor);
        AacDecimator decimator(2, factor);
        const int sizes[] = {1, 2, 0, 700, 5, 63, 129, 1};
        qsizetype place = 0;
        for (int turn = 0; place < samples.size(); ++turn) {
            const QList<qint32> piece = samples.mid(place, 2 * sizes[turn % 8]);
            place += piece.size();
            const AudioBlock out = decimator.run(makeBlock(piece, 2));
            const QList<qint32> expected = plain.run(piece);
            ASSERT_EQ(out.samples, expected) << factor << " up to " << place;
            ASSERT_EQ(out.frames, static_cast<quint64>(expected.size()) / 2);
        }
    }
}

TEST(AacDecimator, AThousandFramesAtPhaseTwoOfThreeYield334)
{
    AacDecimator decimator(2, 3);
    EXPECT_EQ(decimator.run(makeBlock(audiomaker::noise(4, 1), 2)).frames, 0u);
    const AudioBlock out = decimator.run(makeBlock(audiomaker::noise(2000, 2), 2));
    EXPECT_EQ(out.frames, 334u); // (2 + 1000) / 3
    EXPECT_EQ(out.samples.size(), 668);
}

TEST(AacDecimator, TheTailStaysInside)
{
    for (const int factor : {2, 4, 8}) {
        AacDecimator decimator(1, factor);
        const AudioBlock out = decimator.run(makeBlock(audiomaker::noise(10001, 3), 1));
        EXPECT_EQ(out.frames, static_cast<quint64>(10001 / factor));
        EXPECT_EQ(decimator.run(AudioBlock()).frames, 0u);
    }
}

TEST(AacDecimator, AConstantKeepsItsHeight)
{
    for (const int factor : {2, 4, 16}) {
        const QList<qint32> out = reduced(1, factor, QList<qint32>(factor * 200, 123456789));
        // 64 periods fill the filter.
        for (qsizetype i = 64; i < out.size(); ++i)
            EXPECT_EQ(out[i], 123456789) << factor << " " << i;
    }
}

TEST(AacDecimator, AnImpulseComesOutHalfAFilterLater)
{
    QList<qint32> samples(1000, 0);
    samples[500] = 1 << 30;
    const QList<qint32> out = reduced(1, 2, samples);
    const auto highest = std::max_element(out.begin(), out.end());
    // 129 taps delay by 64; output n ends with input 2n + 1.
    EXPECT_NEAR(static_cast<double>(highest - out.begin()), (500.0 + 64.0 - 1.0) / 2.0, 0.5);
}

TEST(AacDecimator, ToneOfThePassBandKeepsItsHeight)
{
    for (const double hertz : {100.0, 1000.0, 10000.0, 18000.0})
        EXPECT_NEAR(decibels(heightAfter(2, hertz, 96000, 0.5) / 0.5), 0.0, 0.05) << hertz;
    EXPECT_NEAR(decibels(heightAfter(8, 1000, 352800, 0.9) / 0.9), 0.0, 0.05);
    // The cut-off, 0.45 of the output rate, lies at half the height.
    EXPECT_NEAR(decibels(heightAfter(2, 0.45 * 48000, 96000, 0.5) / 0.5), -6.02, 0.1);
}

TEST(AacDecimator, WhatWouldFoldIntoTheMusicIsGone)
{
    // Above 48000 - 20000 Hz a tone would land below 20 kHz.
    for (const double hertz : {28000.0, 30000.0, 40000.0, 47000.0})
        EXPECT_LT(decibels(heightAfter(2, hertz, 96000, 0.9)), -95.0) << hertz;
    for (const double hertz : {30000.0, 100000.0, 170000.0})
        EXPECT_LT(decibels(heightAfter(8, hertz, 352800, 0.9)), -95.0) << hertz;
}

TEST(AacDecimator, OvershootEndsAtFullScale)
{
    QList<qint32> square;
    for (int i = 0; i < 4000; ++i)
        square.append(i / 100 % 2 ? 2147483647 : -2147483647 - 1);
    const QList<qint32> out = reduced(1, 2, square);
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 2147483647);
    EXPECT_EQ(*std::min_element(out.begin(), out.end()), -2147483647 - 1);
}

TEST(AacDecimator, ASampleListShorterThanItsFrameCountIsNotReadPast)
{
    AacDecimator decimator(2, 2);
    EXPECT_EQ(decimator.run({audiomaker::noise(9, 4), 1000}).frames, 2u);
}

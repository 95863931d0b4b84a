#include "codecs/Oversampler.h"

#include "codecs/EncoderRun.h"
#include "codecs/dsd/PlainDsdFilter.h"
#include "support/AudioMaker.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

// One channel of the filter as its definition reads, zeroes and all.
class PlainChannel {
public:
    explicit PlainChannel(quint32 raise) : factor(raise)
    {
        const double c = 1.0 / (2.0 * raise);
        double sum = 0;
        for (int i = 0; i < 384; ++i) {
            const double n = i - 191.5;
            const double lowPass = std::sin(c * 6.283185307179586 * n) / (n * 3.141592653589793);
            const double t = n / 191.5;
            const double window =
                plainBesselI0(8.6 * std::sqrt(std::fmax(0, 1 - t * t))) / plainBesselI0(8.6);
            taps[i] = static_cast<float>(lowPass * window);
            sum += lowPass * window;
        }
        for (float& tap : taps)
            tap = static_cast<float>(static_cast<double>(tap) * (raise / sum));
    }

    std::vector<float> run(const std::vector<float>& input)
    {
        std::vector<float> stuffed(input.size() * factor);
        for (std::size_t i = 0; i < input.size(); ++i)
            stuffed[i * factor] = input[i];
        std::vector<float> workArea = history;
        workArea.insert(workArea.end(), stuffed.begin(), stuffed.end());
        std::vector<float> output(stuffed.size());
        for (std::size_t j = 0; j < output.size(); ++j) {
            double sum = 0;
            for (std::size_t k = 0; k < 384; ++k)
                sum += static_cast<double>(taps[k]) * static_cast<double>(workArea[j + 383 - k]);
            output[j] = static_cast<float>(sum);
        }
        history.assign(workArea.end() - 383, workArea.end());
        return output;
    }

    float taps[384];

private:
    std::size_t factor;
    std::vector<float> history = std::vector<float>(383);
};

qint32 plainSample(float value)
{
    const float scaled = value * 2147483648.0f;
    if (scaled >= 2147483648.0f || scaled <= -2147483648.0f)
        return std::numeric_limits<qint32>::min();
    return static_cast<qint32>(scaled);
}

class PlainOversampler {
public:
    PlainOversampler(int channels, quint32 raise)
        : factor(raise), filters(static_cast<std::size_t>(channels), PlainChannel(raise))
    {
    }

    AudioBlock run(const AudioBlock& block)
    {
        AudioBlock out{QList<qint32>(block.samples.size() * qsizetype{factor}), block.frames * factor};
        const auto width = static_cast<qsizetype>(filters.size());
        for (qsizetype channel = 0; channel < width; ++channel) {
            std::vector<float> input;
            for (qsizetype i = channel; i < block.samples.size(); i += width)
                input.push_back(static_cast<float>(block.samples[i]) * 4.656613e-10f);
            const std::vector<float> output = filters[static_cast<std::size_t>(channel)].run(input);
            for (std::size_t i = 0; i < output.size(); ++i)
                out.samples[static_cast<qsizetype>(i) * width + channel] = plainSample(output[i]);
        }
        return out;
    }

private:
    quint32 factor;
    std::vector<PlainChannel> filters;
};

// Bursts, silence, full scale in both directions, and single steps of both signs.
QList<qint32> roughAudio(quint64 samples)
{
    QList<qint32> rough = audiomaker::noise(samples, 21);
    for (qsizetype i = 0; i < rough.size(); ++i) {
        const qsizetype stretch = i / 301 % 5;
        if (stretch == 1)
            rough[i] = 0;
        else if (stretch == 2)
            rough[i] = i % 2 == 0 ? -1 : 1;
        else if (stretch == 3)
            rough[i] = i % 7 < 4 ? std::numeric_limits<qint32>::max() : std::numeric_limits<qint32>::min();
    }
    return rough;
}

} // namespace

class OversamplerFactors : public ::testing::TestWithParam<quint32> {};

TEST_P(OversamplerFactors, BlocksOfAnySizeGiveTheBitsOfThePlainSums)
{
    const quint32 factor = GetParam();
    for (const int channels : {1, 2, 5}) {
        Oversampler oversampler(channels, factor);
        PlainOversampler plain(channels, factor);
        const QList<qint32> samples = roughAudio(static_cast<quint64>(channels) * (factor < 10 ? 1500 : 40));
        const int sizes[] = {1, 3, 0, 100, 16, 17, 500, 2, 4096};
        int turn = 0;
        for (qsizetype place = 0; place < samples.size();) {
            const qsizetype wanted = qsizetype{sizes[turn++ % 9]} * channels;
            const AudioBlock block = makeBlock(samples.mid(place, wanted), channels);
            const AudioBlock ours = oversampler.run(block);
            EXPECT_EQ(ours.frames, block.frames * factor);
            ASSERT_EQ(ours.samples, plain.run(block).samples) << channels << " channels, sample " << place;
            place += block.samples.size();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Factors, OversamplerFactors,
                         ::testing::Values(2u, 3u, 4u, 5u, 7u, 8u, 127u, 128u, 383u, 384u, 385u, 1000u));

TEST(Oversampler, ZeroesStayZeroes)
{
    Oversampler oversampler(2, 2);
    for (int block = 0; block < 3; ++block) {
        const AudioBlock raised = oversampler.run(makeBlock(QList<qint32>(2 * 1000, 0), 2));
        EXPECT_EQ(raised.frames, 2000u);
        EXPECT_EQ(raised.samples, QList<qint32>(2 * 2000, 0));
    }
}

TEST(Oversampler, OneStepComesOutAsTheFilter)
{
    // An impulse of a quarter meets each tap in turn, and after 384 values none.
    Oversampler oversampler(1, 4);
    const PlainChannel plain(4);
    QList<qint32> impulse(120, 0);
    impulse[0] = 1 << 29;
    const AudioBlock raised = oversampler.run(makeBlock(impulse, 1));
    ASSERT_EQ(raised.frames, 480u);
    double sum = 0;
    for (qsizetype i = 0; i < 480; ++i) {
        const double expected = i < 384 ? static_cast<double>(plain.taps[i]) / 4 * 2147483648.0 : 0;
        EXPECT_NEAR(raised.samples[i], expected, 1.0) << i;
        sum += raised.samples[i];
        EXPECT_NEAR(raised.samples[i], i < 384 ? raised.samples[383 - i] : 0, 200) << i; // symmetric
    }
    // The zeroes between the samples take nothing from the level.
    EXPECT_NEAR(sum / (1 << 29), 4.0, 1e-4);
}

TEST(Oversampler, AToneKeepsItsHeightAndComes191AndAHalfValuesLate)
{
    for (const quint32 factor : {2u, 4u}) {
        const double hertz = 1000;
        Oversampler oversampler(1, factor);
        const AudioBlock raised = oversampler.run(makeBlock(audiomaker::sine(4000, 1, hertz, 44100, 0.5), 1));
        const double rate = 44100.0 * factor;
        double worst = 0;
        for (qsizetype i = 500; i < raised.samples.size(); ++i) {
            const double time = (static_cast<double>(i) - 191.5) / rate;
            const double expected = 0.5 * std::sin(2 * std::numbers::pi * hertz * time);
            worst = std::fmax(worst, std::fabs(raised.samples[i] / 2147483648.0 - expected));
        }
        EXPECT_LT(worst, 0.5e-3) << factor; // 60 dB below the tone
        EXPECT_GT(worst, 0.0);
    }
}

TEST(Oversampler, OvershootAboveFullScaleTurnsIntoFullScaleDown)
{
    Oversampler oversampler(1, 2);
    QList<qint32> square;
    for (int i = 0; i < 2000; ++i)
        square.append(i / 20 % 2 == 0 ? std::numeric_limits<qint32>::max()
                                      : std::numeric_limits<qint32>::min());
    const AudioBlock raised = oversampler.run(makeBlock(square, 1));
    int wrapped = 0;
    for (qsizetype i = 1; i + 1 < raised.samples.size(); ++i) {
        EXPECT_NE(raised.samples[i], std::numeric_limits<qint32>::max()); // no float lies there
        if (raised.samples[i] == std::numeric_limits<qint32>::min() && raised.samples[i - 1] > 0)
            ++wrapped;
    }
    EXPECT_GT(wrapped, 40);
}

TEST(Oversampler, ABlockThatWouldGrowBeyondMemoryIsRefused)
{
    Oversampler oversampler(2, std::numeric_limits<quint32>::max());
    EXPECT_THROW(oversampler.run(makeBlock({1, 2}, 2)), std::bad_alloc);
    EXPECT_EQ(oversampler.run(AudioBlock()).frames, 0u);
}

TEST(Oversampler, FewerThanOneChannelCountAsOne)
{
    const AudioBlock block = makeBlock(audiomaker::noise(300, 4), 1);
    const QList<qint32> expected = Oversampler(1, 2).run(block).samples;
    EXPECT_EQ(Oversampler(0, 2).run(block).samples, expected);
    EXPECT_EQ(Oversampler(-3, 2).run(block).samples, expected);
}

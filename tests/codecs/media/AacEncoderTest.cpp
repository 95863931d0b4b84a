#include "codecs/media/AacEncoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/media/M4aFile.h"
#include "support/AudioMaker.h"

#include <QFile>

#include <algorithm>
#include <cmath>

class AacEncoderTest : public EncoderTest {
protected:
    void aac(const AudioFormat& format, const QList<qint32>& samples)
    {
        encode(AacEncoderId, file("track.m4a"), format, samples);
    }

    bool opens(const AudioFormat& format)
    {
        AacEncoder encoder;
        return encoder.open(toPath(file("asked.m4a")), format) && encoder.close();
    }

    // The height of a tone of one channel by its power in the middle half, as a part of full scale.
    static double height(const QList<qint32>& samples, int channels, int channel)
    {
        double power = 0;
        const qsizetype frames = samples.size() / channels;
        for (qsizetype frame = frames / 4; frame < frames * 3 / 4; ++frame)
            power += std::pow(samples[frame * channels + channel] / 2147483648.0, 2.0);
        return std::sqrt(2.0 * power / (static_cast<double>(frames) / 2.0));
    }

    // A few voices with their overtones that swell and fade, over a little noise.
    static QList<qint32> music(quint64 frames)
    {
        const QList<qint32> hiss = audiomaker::noise(2 * frames, 80);
        QList<qint32> samples;
        for (quint64 i = 0; i < frames; ++i) {
            const double time = static_cast<double>(i) / 44100;
            double left = 0;
            double right = 0;
            for (int tone = 1; tone <= 12; ++tone) {
                const double swell = 0.5 + 0.5 * std::sin(time * (0.7 + 0.31 * tone));
                left += swell * std::sin(6.2831853 * 221.0 * tone * time) / tone;
                right += swell * std::sin(6.2831853 * 331.5 * tone * time) / tone;
            }
            samples << static_cast<qint32>(left * 5e8) + hiss[static_cast<qsizetype>(2 * i)] / 16
                    << static_cast<qint32>(right * 5e8) + hiss[static_cast<qsizetype>(2 * i + 1)] / 16;
        }
        return samples;
    }
};

TEST_F(AacEncoderTest, TheFileIsOneForOrdinaryPlayers)
{
    aac({44100, 2, 16}, audiomaker::sine(44100, 2, 440, 44100));
    EXPECT_EQ(expectStereoM4a(file("track.m4a"), "aac").text("profile"), "LC");
}

TEST_F(AacEncoderTest, BitRateIsNear192)
{
    aac({44100, 2, 16}, music(10 * 44100));
    EXPECT_NEAR(static_cast<double>(inspectM4a(file("track.m4a")).number("bit_rate")), 192000.0, 10000.0);
    aac({48000, 2, 16}, audiomaker::noise(2 * 10 * 48000, 81));
    EXPECT_NEAR(static_cast<double>(inspectM4a(file("track.m4a")).number("bit_rate")), 192000.0, 10000.0);
}

TEST_F(AacEncoderTest, EveryLengthIsExactInTheFileAndDecoded)
{
    for (const quint64 frames : {1u, 100u, 1023u, 1024u, 1025u, 2048u, 44100u, 100003u}) {
        aac({44100, 2, 16}, decoderfiles::audio(frames, 2));
        const M4aFacts facts = inspectM4a(file("track.m4a"));
        EXPECT_EQ(facts.number("duration_ts"), static_cast<qint64>(frames));
        EXPECT_EQ(facts.text("time_base"), "1/44100");
        EXPECT_EQ(facts.text("start_time"), "0.000000");
        const Decoded decoded = decode(file("track.m4a"));
        EXPECT_EQ(decoded.format, (AudioFormat{44100, 2, 24}));
        EXPECT_EQ(decoded.frames(), frames);
        EXPECT_EQ(decoded.total, frames);
    }
}

TEST_F(AacEncoderTest, AClickStaysInItsPlace)
{
    for (const qsizetype place : {5000, 20480, 30001}) {
        QList<qint32> samples(40000, 0);
        samples[place] = 0x60000000;
        aac({44100, 1, 16}, samples);
        for (const QList<qint32>& decoded :
             {decodeWithFfmpeg(file("track.m4a")), decode(file("track.m4a")).samples}) {
            const auto highest = std::max_element(decoded.begin(), decoded.end());
            EXPECT_NEAR(static_cast<double>(highest - decoded.begin()), static_cast<double>(place), 1.0);
        }
    }
}

TEST_F(AacEncoderTest, ChannelsKeepTheirSideAndTheirHeight)
{
    QList<qint32> both;
    const QList<qint32> left = audiomaker::sine(44100, 1, 1000, 44100, 0.5);
    const QList<qint32> right = audiomaker::sine(44100, 1, 1700, 44100, 0.125);
    for (qsizetype i = 0; i < left.size(); ++i)
        both << left[i] << right[i];
    aac({44100, 2, 16}, both);
    const QList<qint32> decoded = decodeWithFfmpeg(file("track.m4a"));
    EXPECT_NEAR(height(decoded, 2, 0), 0.5, 0.01);
    EXPECT_NEAR(height(decoded, 2, 1), 0.125, 0.01);
}

TEST_F(AacEncoderTest, HighRatesComeDownToTheirFamily)
{
    const QList<std::pair<quint32, quint32>> rates{{44100, 44100},  {48000, 48000},  {88200, 44100},
                                                   {96000, 48000},  {176400, 44100}, {192000, 48000},
                                                   {352800, 44100}, {705600, 44100}};
    for (const auto& [rate, target] : rates) {
        aac({rate, 2, 24}, audiomaker::sine(rate / 2 + 1, 2, 1000, rate, 0.5));
        const M4aFacts facts = inspectM4a(file("track.m4a"));
        EXPECT_EQ(facts.number("sample_rate"), target);
        // The frames that do not fill a period are dropped, and so is the filter's tail.
        EXPECT_EQ(facts.number("duration_ts"), (rate / 2 + 1) / (rate / target)) << rate;
        EXPECT_NEAR(height(decodeWithFfmpeg(file("track.m4a")), 2, 0), 0.5, 0.01) << rate;
    }
}

TEST_F(AacEncoderTest, RatesThatDoNotComeDownEvenlyAreRefused)
{
    for (const quint32 rate :
         {0u, 1u, 8000u, 11025u, 22050u, 24000u, 32000u, 44099u, 50000u, 64000u, 4294967295u})
        EXPECT_FALSE(opens({rate, 2, 16})) << rate;
    EXPECT_FALSE(QFile::exists(file("asked.m4a")));
}

TEST_F(AacEncoderTest, OnlyMonoAndStereoAreTaken)
{
    EXPECT_TRUE(opens({44100, 1, 16}));
    EXPECT_TRUE(opens({44100, 2, 16}));
    for (const quint16 channels : QList<quint16>{0, 3, 6, 8, 65535})
        EXPECT_FALSE(opens({44100, channels, 16})) << channels;
}

TEST_F(AacEncoderTest, ARefusedFormatLeavesAnEarlierFileAlone)
{
    writeAll(file("asked.m4a"), "earlier");
    EXPECT_FALSE(opens({32000, 2, 16}));
    EXPECT_FALSE(opens({44100, 3, 16}));
    EXPECT_EQ(readAll(file("asked.m4a")), "earlier");
}

TEST_F(AacEncoderTest, MonoGivesAMonoFile)
{
    aac({44100, 1, 24}, audiomaker::sine(44100, 1, 440, 44100));
    const M4aFacts facts = inspectM4a(file("track.m4a"));
    EXPECT_EQ(facts.text("channels"), "1");
    EXPECT_NEAR(height(decodeWithFfmpeg(file("track.m4a")), 1, 0), 0.5, 0.01);
}

TEST_F(AacEncoderTest, AnEncodingCanBeRepeatedToTheByte)
{
    const QList<qint32> samples = audiomaker::noise(2 * 50000, 82);
    const QByteArray first = encode(AacEncoderId, file("1.m4a"), {96000, 2, 24}, samples);
    EXPECT_EQ(encodeInPieces(AacEncoderId, file("2.m4a"), {96000, 2, 24}, samples, {1, 30000, 777}), first);
}

TEST_F(AacEncoderTest, AnEncoderLeftOpenLeavesAWholeFile)
{
    {
        AacEncoder encoder;
        ASSERT_TRUE(encoder.open(toPath(file("track.m4a")), {44100, 2, 16}));
        ASSERT_TRUE(encoder.write(makeBlock(audiomaker::sine(5000, 2, 440, 44100), 2)));
    }
    EXPECT_EQ(inspectM4a(file("track.m4a")).number("duration_ts"), 5000);
}

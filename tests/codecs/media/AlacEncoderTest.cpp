#include "codecs/media/AlacEncoder.h"

#include "codecs/media/M4aFile.h"
#include "support/AudioMaker.h"

#include <QFile>

#include <limits>

class AlacEncoderTest : public EncoderTest {
protected:
    void alac(const AudioFormat& format, const QList<qint32>& samples)
    {
        encode(AlacEncoderId, file("track.m4a"), format, samples);
    }
};

TEST_F(AlacEncoderTest, TheFileIsOneForOrdinaryPlayers)
{
    alac({44100, 2, 16}, audiomaker::sine(44100, 2, 440, 44100));
    expectStereoM4a(file("track.m4a"), "alac");
}

TEST_F(AlacEncoderTest, SamplesAreCutToTheWidthAndComeBackToTheBit)
{
    // Noise takes the codec's way for what it cannot shrink, a tone the other.
    const QList<qint32> samples =
        audiomaker::noise(2 * 30011, 90) + audiomaker::sine(30011, 2, 997, 44100, 0.9);
    for (const quint16 bits : QList<quint16>{0, 8, 16, 17, 20, 24, 32}) {
        const int width = bits < 17 ? 16 : 24;
        alac({44100, 2, bits}, samples);
        const QList<qint32> kept = keepBits(samples, width);
        EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), kept) << bits;
        const Decoded decoded = decode(file("track.m4a"));
        EXPECT_EQ(decoded.format, (AudioFormat{44100, 2, static_cast<quint16>(width)}));
        EXPECT_EQ(decoded.total, 60022u);
        EXPECT_EQ(decoded.samples, kept) << bits;
    }
    EXPECT_EQ(inspectM4a(file("track.m4a")).number("bits_per_raw_sample"), 24);
}

TEST_F(AlacEncoderTest, TheEndsOfTheRangeComeBack)
{
    constexpr qint32 highest = std::numeric_limits<qint32>::max();
    constexpr qint32 lowest = std::numeric_limits<qint32>::min();
    QList<qint32> samples;
    for (int i = 0; i < 3000; ++i)
        samples << highest << lowest << (i % 3 == 0 ? lowest : highest) << -1;
    for (const quint16 bits : QList<quint16>{16, 24}) {
        alac({44100, 2, bits}, samples);
        EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), keepBits(samples, bits));
    }
}

TEST_F(AlacEncoderTest, EveryLengthIsExactInTheFileAndDecoded)
{
    for (const quint64 frames : {1u, 9u, 4095u, 4096u, 4097u, 100003u}) {
        const QList<qint32> samples = audiomaker::sine(frames, 2, 440, 44100);
        alac({44100, 2, 16}, samples);
        EXPECT_EQ(inspectM4a(file("track.m4a")).number("duration_ts"), static_cast<qint64>(frames));
        const Decoded decoded = decode(file("track.m4a"));
        EXPECT_EQ(decoded.total, frames);
        EXPECT_EQ(decoded.samples, keepBits(samples, 16));
        EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), keepBits(samples, 16));
    }
}

TEST_F(AlacEncoderTest, UpToEightChannelsComeBackInTheirOrder)
{
    const char* layouts[] = {"mono", "stereo", "3.0", "4.0", "5.0", "5.1", "6.1(back)", "7.1(wide)"};
    for (quint16 channels = 1; channels <= 8; ++channels) {
        const quint16 bits = channels % 2 == 0 ? 16 : 24;
        const QList<qint32> samples = audiomaker::noise(quint64{channels} * 9000, 91 + channels);
        alac({48000, channels, bits}, samples);
        const M4aFacts facts = inspectM4a(file("track.m4a"));
        EXPECT_EQ(facts.number("channels"), channels);
        EXPECT_EQ(facts.text("channel_layout"), layouts[channels - 1]);
        EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), keepBits(samples, bits));
        EXPECT_EQ(decode(file("track.m4a")).samples, keepBits(samples, bits));
    }
}

TEST_F(AlacEncoderTest, AnyRateIsKept)
{
    for (const quint32 rate : {8000u, 50000u, 96000u, 352800u, 705600u}) {
        const QList<qint32> samples = audiomaker::noise(2 * 5000, 99);
        alac({rate, 2, 24}, samples);
        const M4aFacts facts = inspectM4a(file("track.m4a"));
        EXPECT_EQ(facts.number("sample_rate"), rate);
        EXPECT_EQ(facts.number("duration_ts"), 5000);
        const Decoded decoded = decode(file("track.m4a"));
        EXPECT_EQ(decoded.format, (AudioFormat{rate, 2, 24}));
        EXPECT_EQ(decoded.samples, keepBits(samples, 24)) << rate;
    }
}

TEST_F(AlacEncoderTest, WhatTheCodecCannotHoldIsRefusedWithoutAFile)
{
    for (const AudioFormat& format :
         {AudioFormat{44100, 9, 16}, AudioFormat{44100, 0, 16}, AudioFormat{44100, 65535, 24},
          AudioFormat{0, 2, 16}, AudioFormat{4294967295, 2, 16}}) {
        AlacEncoder encoder;
        EXPECT_FALSE(encoder.open(toPath(file("asked.m4a")), format));
        EXPECT_TRUE(encoder.close());
        EXPECT_FALSE(QFile::exists(file("asked.m4a")));
    }
}

TEST_F(AlacEncoderTest, AnEncoderLeftOpenLeavesAWholeFile)
{
    const QList<qint32> samples = audiomaker::sine(5000, 2, 440, 44100);
    {
        AlacEncoder encoder;
        ASSERT_TRUE(encoder.open(toPath(file("track.m4a")), {44100, 2, 16}));
        ASSERT_TRUE(encoder.write(makeBlock(samples, 2)));
    }
    EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), keepBits(samples, 16));
}

TEST_F(AlacEncoderTest, FramesCountWhenTheSampleListIsLonger)
{
    const QList<qint32> samples = audiomaker::noise(8000, 92);
    AlacEncoder encoder;
    ASSERT_TRUE(encoder.open(toPath(file("track.m4a")), {44100, 2, 16}));
    ASSERT_TRUE(encoder.write({samples, 3000}));
    ASSERT_TRUE(encoder.close());
    EXPECT_EQ(decodeWithFfmpeg(file("track.m4a")), keepBits(samples.mid(0, 6000), 16));
}

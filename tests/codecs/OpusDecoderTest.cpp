#include "codecs/OpusDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/Tool.h"

class OpusDecoderTest : public EncoderTest {
protected:
    // The library rounds to 16 bits with shaped dither, whose peaks reach this far.
    // A sample of misalignment would be hundreds of steps.
    static constexpr double ditherSteps = 24.0;

    QList<qint32> judge(const QString& name) const
    {
        const ToolResult made =
            runTool(QStringLiteral("opusdec"),
                    {QStringLiteral("--quiet"), QStringLiteral("--rate"), QStringLiteral("48000"),
                     QStringLiteral("--no-dither"), name, file("judge.wav")});
        EXPECT_TRUE(made.ok()) << made.errors.toStdString();
        return decodeWithFfmpeg(file("judge.wav"));
    }
};

class OpusChannelsTest : public OpusDecoderTest, public ::testing::WithParamInterface<quint16> {};

TEST_P(OpusChannelsTest, AgreesWithAnIndependentDecoderToTheSample)
{
    const quint16 channels = GetParam();
    decoderfiles::encode(file("a.opus"), {48000, channels, 16}, decoderfiles::audio(54321, channels));
    const Decoded decoded = decode(file("a.opus"));
    EXPECT_EQ(decoded.format, (AudioFormat{48000, channels, 16}));
    EXPECT_EQ(decoded.total, 54321u);
    EXPECT_EQ(decoded.frames(), 54321u);
    for (const quint64 frames : decoded.blocks)
        EXPECT_LE(frames, 4096u);
    const QList<qint32> expected = judge(file("a.opus"));
    EXPECT_LE(largestDifference(decoded.samples, expected, 16), ditherSteps);
}

INSTANTIATE_TEST_SUITE_P(Channels, OpusChannelsTest, ::testing::Range<quint16>(1, 9));

TEST_F(OpusDecoderTest, WhatWasRecordedAt44100IsDeliveredAt48000)
{
    decoderfiles::encode(file("a.opus"), {44100, 2, 16}, decoderfiles::audio(44100, 2));
    const Decoded decoded = decode(file("a.opus"));
    EXPECT_EQ(decoded.format.sampleRate, 48000u);
    EXPECT_EQ(decoded.frames(), 48000u);
    EXPECT_LE(largestDifference(decoded.samples, judge(file("a.opus")), 16), ditherSteps);
}

TEST_F(OpusDecoderTest, AChainOfFilesPlaysThrough)
{
    decoderfiles::encode(file("a.opus"), {48000, 2, 16}, decoderfiles::audio(20000, 2));
    const ToolResult second =
        runTool(QStringLiteral("opusenc"), {QStringLiteral("--quiet"), QStringLiteral("--serial"),
                                            QStringLiteral("2"), file("a.opus.source.wav"), file("b.opus")});
    ASSERT_TRUE(second.ok());
    writeAll(file("chain.opus"), readAll(file("a.opus")) + readAll(file("b.opus")));
    const Decoded decoded = decode(file("chain.opus"));
    EXPECT_EQ(decoded.total, 40000u);
    EXPECT_EQ(decoded.frames(), 40000u);
}

// The channel count of the first link goes on to be used, and no sample behind
// what was decoded is touched.
TEST_F(OpusDecoderTest, ALaterLinkWithOtherChannelsIsNotFollowed)
{
    for (const auto& [first, second] : {std::pair<quint16, quint16>{1, 2}, {2, 1}, {2, 6}, {6, 1}}) {
        decoderfiles::encode(file("a.opus"), {48000, first, 16}, decoderfiles::audio(20000, first));
        decoderfiles::encode(file("b.opus"), {48000, second, 16}, decoderfiles::audio(20000, second));
        writeAll(file("chain.opus"),
                 readAll(file("a.opus")) + readAll(file("b.opus")).replace(14, 1, "\x07"));
        const Decoded decoded = decode(file("chain.opus"));
        EXPECT_TRUE(decoded.opened);
        EXPECT_EQ(decoded.format.channels, first);
        EXPECT_GE(decoded.frames(), 20000u);
    }
}

TEST_F(OpusDecoderTest, ATruncatedFileEndsEarly)
{
    decoderfiles::encode(file("a.opus"), {48000, 2, 16}, decoderfiles::audio(300000, 2));
    const QByteArray whole = readAll(file("a.opus"));
    writeAll(file("b.opus"), whole.left(whole.size() / 2));
    const Decoded cut = decode(file("b.opus"));
    EXPECT_GT(cut.frames(), 50000u);
    EXPECT_LT(cut.frames(), 300000u);
}

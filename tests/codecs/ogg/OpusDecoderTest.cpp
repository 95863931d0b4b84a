#include "codecs/ogg/OpusDecoder.h"

#include "codecs/DecoderFiles.h"
#include "codecs/ogg/ChainFile.h"
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

TEST_F(OpusDecoderTest, AFileWithoutAudioHasNoTotal)
{
    decoderfiles::make(file("a.opus"), 0);
    const Decoded decoded = decode(file("a.opus"));
    EXPECT_TRUE(decoded.opened);
    EXPECT_EQ(decoded.total, std::nullopt);
    EXPECT_EQ(decoded.frames(), 0u);
}

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

TEST_F(OpusDecoderTest, ALaterLinkIsDeliveredInTheFirstOnesChannels)
{
    for (const auto& [first, second] : {std::pair<quint16, quint16>{1, 2}, {2, 1}, {2, 6}, {6, 1}}) {
        makeChain(file("chain.opus"), {{48000, first, 16}, {48000, second, 16}}, 20000);
        const Decoded decoded = decode(file("chain.opus"));
        EXPECT_EQ(decoded.format.channels, first);
        EXPECT_EQ(decoded.total, 40000u);
        EXPECT_EQ(decoded.frames(), 40000u);
    }
}

// 5,760 frames of one channel fit where 4,096 of six do.
TEST_F(OpusDecoderTest, LongPacketsOfALaterLinkStayWithinABlock)
{
    decoderfiles::encode(file("a.opus"), {48000, 6, 16}, decoderfiles::audio(20000, 6));
    writeAll(file("s.wav"), waveFile({48000, 1, 16}, decoderfiles::audio(48000, 1)));
    const ToolResult made = runTool(QStringLiteral("ffmpeg"),
                                    {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"),
                                     file("s.wav"), QStringLiteral("-c:a"), QStringLiteral("libopus"),
                                     QStringLiteral("-frame_duration"), QStringLiteral("120"),
                                     QStringLiteral("-serial_offset"), QStringLiteral("7"), file("b.opus")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    writeAll(file("chain.opus"), readAll(file("a.opus")) + readAll(file("b.opus")));
    const Decoded decoded = decode(file("chain.opus"));
    EXPECT_GE(decoded.frames(), 68000u);
    for (const quint64 frames : decoded.blocks)
        EXPECT_LE(frames, 4096u);
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

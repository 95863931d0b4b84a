#include "codecs/wavpack/WavPackDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

#include <bit>

class WavPackWidthTest : public EncoderTest, public ::testing::WithParamInterface<AudioFormat> {};

TEST_P(WavPackWidthTest, SamplesAreLeftJustifiedAndAgreeWithIndependentDecoders)
{
    const AudioFormat format = GetParam();
    const QList<qint32> samples = audiomaker::noise(7000u * format.channels, 9);
    decoderfiles::encode(file("a.wv"), format, samples);
    const Decoded decoded = decode(file("a.wv"));
    EXPECT_EQ(decoded.format, format);
    EXPECT_EQ(decoded.total, 7000u);
    EXPECT_EQ(decoded.blocks, (QList<quint64>{4096, 2904}));
    EXPECT_EQ(decoded.samples, keepBits(samples, format.bitsPerSample));
    ASSERT_TRUE(runTool(QStringLiteral("wvunpack"),
                        {QStringLiteral("-qy"), file("a.wv"), QStringLiteral("-o"), file("judge.wav")})
                    .ok());
    EXPECT_EQ(decoded.samples, decodeWithFfmpeg(file("judge.wav")));
}

INSTANTIATE_TEST_SUITE_P(Widths, WavPackWidthTest, ::testing::ValuesIn(formatsOfWidths({8, 16, 24, 32})),
                         nameOfFormat);

class WavPackDecoderTest : public EncoderTest {
protected:
    QByteArray unpackedBytes(const QString& name) const
    {
        const ToolResult unpacked =
            runTool(QStringLiteral("wvunpack"), {QStringLiteral("-q"), QStringLiteral("-r"), name,
                                                 QStringLiteral("-o"), QStringLiteral("-")});
        EXPECT_TRUE(unpacked.ok()) << unpacked.errors.toStdString();
        return unpacked.output;
    }
};

class WavPackPartWidthTest : public WavPackDecoderTest, public ::testing::WithParamInterface<AudioFormat> {};

// What the library delivers fills the top of whole bytes already; the shift is
// that of the width alone, and what lies above it is lost.
TEST_P(WavPackPartWidthTest, PartsOfBytesAreShiftedByTheirWidth)
{
    const AudioFormat format = GetParam();
    decoderfiles::encode(file("a.wv"), format, audiomaker::noise(5000u * format.channels, 4));
    const Decoded decoded = decode(file("a.wv"));
    EXPECT_EQ(decoded.format, format);
    const int storedBytes = (format.bitsPerSample + 7) / 8;
    QList<qint32> expected;
    const QByteArray stored = unpackedBytes(file("a.wv"));
    for (qsizetype i = 0; i < stored.size(); i += storedBytes) {
        quint32 value = 0;
        for (int byte = 0; byte < storedBytes; ++byte)
            value |= quint32{static_cast<quint8>(stored[i + byte])} << (8 * byte);
        expected.append(static_cast<qint32>(value << (32 - format.bitsPerSample)));
    }
    EXPECT_EQ(expected.size(), 5000 * format.channels);
    EXPECT_EQ(decoded.samples, expected);
}

INSTANTIATE_TEST_SUITE_P(Widths, WavPackPartWidthTest, ::testing::ValuesIn(formatsOfWidths({12, 20})),
                         nameOfFormat);

TEST_F(WavPackDecoderTest, FloatsComeOutAsTheirWords)
{
    QByteArray data;
    QList<qint32> words;
    for (const float value : {0.0f, 0.5f, -0.25f, 1.0f, 0.123456f, -0.999f}) {
        words.append(std::bit_cast<qint32>(value));
        data += little(words.last());
    }
    const QByteArray format = little(quint16{3}) + little(quint16{1}) + little(quint32{44100})
                              + little(quint32{176400}) + little(quint16{4}) + little(quint16{32});
    writeAll(file("f.wav"),
             littleChunk("RIFF", "WAVE" + littleChunk("fmt ", format) + littleChunk("data", data)));
    ASSERT_TRUE(runTool(QStringLiteral("wavpack"),
                        {QStringLiteral("-qy"), file("f.wav"), QStringLiteral("-o"), file("f.wv")})
                    .ok());
    const Decoded decoded = decode(file("f.wv"));
    EXPECT_EQ(decoded.format, (AudioFormat{44100, 1, 32}));
    EXPECT_EQ(decoded.samples, words);
}

TEST_F(WavPackDecoderTest, ATruncatedFileEndsEarly)
{
    decoderfiles::encode(file("a.wv"), {44100, 2, 16}, audiomaker::noise(2 * 100000, 4));
    const Decoded all = decode(file("a.wv"));
    const QByteArray whole = readAll(file("a.wv"));
    writeAll(file("b.wv"), whole.left(whole.size() * 3 / 4));
    const Decoded cut = decode(file("b.wv"));
    EXPECT_EQ(cut.total, 100000u);
    EXPECT_GT(cut.frames(), 20000u);
    EXPECT_LT(cut.frames(), 100000u);
    EXPECT_EQ(cut.samples, all.samples.mid(0, cut.samples.size()));
}

TEST_F(WavPackDecoderTest, OneBitAudioIsRefused)
{
    decoderfiles::make(file("a.dsf"), 4096 * 4);
    const ToolResult packed = runTool(QStringLiteral("wavpack"), {QStringLiteral("-qy"), file("a.dsf"),
                                                                  QStringLiteral("-o"), file("a.wv")});
    ASSERT_TRUE(packed.ok()) << packed.errors.toStdString();
    // The library must be asked for such files by a flag, and is not.
    EXPECT_FALSE(decode(file("a.wv")).opened);
}

#include "codecs/pcm/WavDecoder.h"

#include "codecs/DecoderRun.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

class WavDecoderTest : public EncoderTest {
protected:
    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.wav"), bytes);
        return decodeWith<WavDecoder>(file("a.wav"));
    }

    static QByteArray format(quint16 tag, quint16 channels, quint16 bits, const QByteArray& extra = {})
    {
        return littleChunk("fmt ", little(tag) + little(channels) + little(quint32{48000})
                                       + little(quint32{0}) + little(quint16{0}) + little(bits) + extra);
    }

    static QByteArray riff(const QByteArray& chunks) { return littleChunk("RIFF", "WAVE" + chunks); }
};

TEST_F(WavDecoderTest, EveryWidthComesOutLeftJustified)
{
    const QByteArray data =
        littleChunk("data", QByteArray("\x01\x80\xFF\x7F\x00\x00\x34\x12\x00\x80\xFE\xFF", 12));
    const Decoded bits16 = decodeBytes(riff(format(1, 1, 16) + data));
    EXPECT_EQ(bits16.format, (AudioFormat{48000, 1, 16}));
    EXPECT_EQ(bits16.samples, patterns({0x80010000, 0x7FFF0000, 0, 0x12340000, 0x80000000, 0xFFFE0000}));
    const Decoded bits24 = decodeBytes(riff(format(1, 1, 24) + data));
    EXPECT_EQ(bits24.samples, patterns({0xFF800100, 0x00007F00, 0x00123400, 0xFFFE8000}));
    const Decoded bits32 = decodeBytes(riff(format(1, 3, 32) + data));
    EXPECT_EQ(bits32.format, (AudioFormat{48000, 3, 32}));
    EXPECT_EQ(bits32.samples, patterns({0x7FFF8001, 0x12340000, 0xFFFE8000}));
}

TEST_F(WavDecoderTest, OtherWidthsAreSilenceOfTheRightLength)
{
    const QByteArray data = littleChunk("data", QByteArray(24, '\x55'));
    for (const auto& [bits, frames] :
         {std::pair<quint16, quint64>{8, 12}, {12, 12}, {20, 6}, {40, 2}, {64, 1}}) {
        const Decoded decoded = decodeBytes(riff(format(1, 2, bits) + data));
        EXPECT_EQ(decoded.format.bitsPerSample, bits);
        EXPECT_EQ(decoded.total, frames) << bits;
        EXPECT_EQ(decoded.samples, QList<qint32>(static_cast<qsizetype>(2 * frames), 0)) << bits;
    }
}

TEST_F(WavDecoderTest, AWidthBelowEightBitsOrNoChannelsHaveNoFrames)
{
    const QByteArray data = littleChunk("data", QByteArray(24, '\x55'));
    for (const QByteArray& header : {format(1, 2, 7), format(1, 2, 0), format(1, 0, 16)}) {
        const Decoded decoded = decodeBytes(riff(header + data));
        EXPECT_TRUE(decoded.opened);
        EXPECT_EQ(decoded.total, 0u);
        EXPECT_TRUE(decoded.blocks.isEmpty());
    }
}

TEST_F(WavDecoderTest, TheFormatTagIsNotLookedAt)
{
    const QByteArray data = littleChunk("data", little(quint32{0x3F800000}) + little(quint32{0xBF000000}));
    for (const quint16 tag : {quint16{3}, quint16{6}, quint16{2}, quint16{0xFFFE}}) {
        const Decoded decoded = decodeBytes(riff(format(tag, 2, 32) + data));
        EXPECT_EQ(decoded.samples, patterns({0x3F800000, 0xBF000000})) << tag;
    }
}

TEST_F(WavDecoderTest, ExtensibleWith24ValidBitsIn32DeliversTheWordsUnshifted)
{
    const QByteArray extra = little(quint16{22}) + little(quint16{24}) + QByteArray(20, '\0');
    const QByteArray data = littleChunk("data", little(quint32{0x00123456}) + little(quint32{0xFFFEDCBA}));
    const Decoded decoded = decodeBytes(riff(format(0xFFFE, 2, 32, extra) + data));
    EXPECT_EQ(decoded.format.bitsPerSample, 32);
    EXPECT_EQ(decoded.samples, patterns({0x00123456, 0xFFFEDCBA}));
}

TEST_F(WavDecoderTest, AListOfEvenSizeBeforeTheDataIsPassedOver)
{
    const QByteArray data = littleChunk("data", little(quint32{0x12345678}));
    EXPECT_EQ(decodeBytes(riff(format(1, 1, 32) + littleChunk("LIST", QByteArray(26, 'x')) + data)).samples,
              patterns({0x12345678}));
}

TEST_F(WavDecoderTest, AListOfOddSizeBeforeTheDataHidesIt)
{
    const QByteArray data = littleChunk("data", little(quint32{0x12345678}));
    const QByteArray list = littleChunk("LIST", QByteArray(25, 'x')) + '\0';
    EXPECT_FALSE(decodeBytes(riff(format(1, 1, 32) + list + data)).opened);
}

TEST_F(WavDecoderTest, DataMayStandBeforeTheFormat)
{
    const QByteArray data = littleChunk("data", little(quint32{0x12345678}) + little(quint32{5}));
    const Decoded decoded = decodeBytes(riff(data + format(1, 1, 32)));
    EXPECT_EQ(decoded.total, 2u);
    EXPECT_EQ(decoded.samples, patterns({0x12345678, 5}));
}

TEST_F(WavDecoderTest, AnEmptyDataChunkHasNoFrames)
{
    const Decoded decoded = decodeBytes(riff(format(1, 2, 16) + littleChunk("data", {})));
    EXPECT_TRUE(decoded.opened);
    EXPECT_EQ(decoded.total, 0u);
    EXPECT_TRUE(decoded.blocks.isEmpty());
}

TEST_F(WavDecoderTest, DataBeyondTheEndOfTheFileAreZeroes)
{
    const QByteArray header = riff(format(1, 2, 16));
    const Decoded decoded =
        decodeBytes(header + "data" + little(quint32{4 * 5000}) + little(quint32{0x00010002}));
    EXPECT_EQ(decoded.total, 5000u);
    EXPECT_EQ(decoded.blocks, (QList<quint64>{4096, 904}));
    EXPECT_EQ(decoded.samples.mid(0, 2), patterns({0x00020000, 0x00010000}));
    EXPECT_EQ(decoded.samples.mid(2), QList<qint32>(9998, 0));
}

TEST_F(WavDecoderTest, WrongMagicAndMissingChunksAreRefused)
{
    const QByteArray data = littleChunk("data", QByteArray(8, '\0'));
    const QByteArray good = riff(format(1, 2, 16) + data);
    EXPECT_TRUE(decodeBytes(good).opened);
    EXPECT_FALSE(decodeBytes("RF64" + good.mid(4)).opened);
    EXPECT_FALSE(decodeBytes("RIFX" + good.mid(4)).opened);
    EXPECT_FALSE(decodeBytes(good.left(8) + "WAVX" + good.mid(12)).opened);
    EXPECT_FALSE(decodeBytes(riff(data)).opened);
    EXPECT_FALSE(decodeBytes(riff(format(1, 2, 16))).opened);
    for (qsizetype length = 0; length < 44; ++length)
        EXPECT_FALSE(decodeBytes(good.left(length)).opened) << length;
}

TEST_F(WavDecoderTest, BlocksStaySmallWithTheMostChannelsThatAHeaderCanName)
{
    const QByteArray header = riff(format(1, 65535, 16));
    const Decoded decoded = decodeBytes(header + "data" + little(quint32{2 * 65535 * 100}) + "\x01\x02");
    EXPECT_EQ(decoded.total, 100u);
    // 64 frames of 65535 samples of 4 bytes are 16776960 bytes, 256 short of 16 MiB.
    EXPECT_EQ(decoded.blocks, (QList<quint64>{64, 36}));
    EXPECT_EQ(decoded.samples.first(), 0x02010000);
}

TEST_F(WavDecoderTest, AWidthOfManyBytesIsNotAllocatedFor)
{
    // A frame of 65535 channels of 8191 bytes each is half a gigabyte.
    const QByteArray header = riff(format(1, 65535, 65535));
    const Decoded decoded = decodeBytes(header + "data" + little(quint32{0xFFFFFFFF}));
    EXPECT_EQ(decoded.total, 0xFFFFFFFFu / (65535u * 8191u));
    EXPECT_EQ(decoded.frames(), *decoded.total);
}

class WavAgainstSoxTest : public EncoderTest, public ::testing::WithParamInterface<AudioFormat> {};

TEST_P(WavAgainstSoxTest, AgreesBitForBit)
{
    const AudioFormat format = GetParam();
    const QList<qint32> samples = audiomaker::noise(5000u * format.channels, 7);
    writeAll(file("source.wav"), waveFile({format.sampleRate, format.channels, 32}, samples));
    const QString bits = QString::number(format.bitsPerSample);
    // The tool's own dither would change the low bits of what it cuts.
    const ToolResult made =
        runTool(QStringLiteral("sox"), {QStringLiteral("-D"), file("source.wav"), QStringLiteral("-b"), bits,
                                        QStringLiteral("-e"), QStringLiteral("signed"), file("made.wav")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    const Decoded decoded = decode(file("made.wav"));
    EXPECT_EQ(decoded.format, format);
    EXPECT_EQ(decoded.total, 5000u);
    EXPECT_EQ(decoded.samples, decodeWithFfmpeg(file("made.wav")));
}

INSTANTIATE_TEST_SUITE_P(Widths, WavAgainstSoxTest, ::testing::ValuesIn(formatsOfWidths({16, 24, 32})),
                         nameOfFormat);

#include "codecs/pcm/AiffDecoder.h"

#include "codecs/DecoderRun.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

class AiffDecoderTest : public EncoderTest {
protected:
    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.aiff"), bytes);
        return decodeWith<AiffDecoder>(file("a.aiff"));
    }

    static QByteArray common(quint16 channels, quint16 bits, const char* rate = rate44100,
                             const QByteArray& extra = {})
    {
        return bigChunk("COMM",
                        big(channels) + big(quint32{123456}) + big(bits) + QByteArray(rate, 10) + extra);
    }

    static QByteArray sound(const QByteArray& data, quint32 offset = 0)
    {
        return bigChunk("SSND", big(offset) + big(quint32{0}) + data);
    }

    static QByteArray form(const QByteArray& chunks) { return bigChunk("FORM", "AIFF" + chunks); }

    quint32 rateOf(const char* rate) const
    {
        const Decoded decoded = decodeBytes(form(common(1, 16, rate) + sound("\x12\x34")));
        EXPECT_TRUE(decoded.opened);
        return decoded.format.sampleRate;
    }

    static constexpr char rate44100[] = "\x40\x0E\xAC\x44\0\0\0\0\0\0";
    const QByteArray data{"\x01\x80\xFF\x7F\x00\x00\x34\x12\x00\x80\xFE\xFF", 12};
};

TEST_F(AiffDecoderTest, EveryWidthComesOutLeftJustified)
{
    const Decoded bits16 = decodeBytes(form(common(2, 16) + sound(data)));
    EXPECT_EQ(bits16.format, (AudioFormat{44100, 2, 16}));
    EXPECT_EQ(bits16.total, 3u);
    EXPECT_EQ(bits16.samples, patterns({0x01800000, 0xFF7F0000, 0, 0x34120000, 0x00800000, 0xFEFF0000}));
    const Decoded bits24 = decodeBytes(form(common(1, 24) + sound(data)));
    EXPECT_EQ(bits24.samples, patterns({0x0180FF00, 0x7F000000, 0x34120000, 0x80FEFF00}));
    const Decoded bits32 = decodeBytes(form(common(3, 32) + sound(data)));
    EXPECT_EQ(bits32.samples, patterns({0x0180FF7F, 0x00003412, 0x0080FEFF}));
}

TEST_F(AiffDecoderTest, OtherWidthsAreRefused)
{
    for (const int bits : {0, 8, 12, 15, 17, 20, 40, 65535})
        EXPECT_FALSE(decodeBytes(form(common(1, static_cast<quint16>(bits)) + sound(data))).opened) << bits;
}

TEST_F(AiffDecoderTest, AnOddNameAheadOfTheSoundIsPaddedAndPassedOver)
{
    const QByteArray name = bigChunk("NAME", "abc") + '\0';
    EXPECT_EQ(decodeBytes(form(common(1, 32) + name + sound("\x12\x34\x56\x78"))).samples,
              patterns({0x12345678}));
}

TEST_F(AiffDecoderTest, AnOddCommonChunkIsPaddedAndPassedOver)
{
    const QByteArray odd = common(1, 32, rate44100, "xyz") + '\0';
    EXPECT_EQ(decodeBytes(form(odd + sound("\x12\x34\x56\x78"))).samples, patterns({0x12345678}));
}

TEST_F(AiffDecoderTest, AnOddSoundChunkAheadOfTheCommonOneIsPadded)
{
    const QByteArray odd = sound("\x12\x34\x56\x78\x9A") + '\0';
    EXPECT_EQ(decodeBytes(form(odd + common(1, 32))).samples, patterns({0x12345678}));
}

TEST_F(AiffDecoderTest, TheOffsetOfTheSoundMovesItsStartAndShortensIt)
{
    const Decoded decoded = decodeBytes(form(common(1, 32) + sound("skipskip\x12\x34\x56\x78", 8)));
    EXPECT_EQ(decoded.total, 1u);
    EXPECT_EQ(decoded.samples, patterns({0x12345678}));
}

// The size of the data is worked out in 32 bits, and believed.
TEST_F(AiffDecoderTest, ASoundChunkSmallerThanItsOwnFieldsOrItsOffsetWrapsAround)
{
    const auto framesOf = [this](quint32 size, quint32 offset) {
        const QByteArray chunk = "SSND" + big(size) + big(offset) + big(quint32{0}) + data;
        writeAll(file("a.aiff"), form(common(1, 16) + chunk));
        AiffDecoder decoder;
        EXPECT_TRUE(decoder.open(toPath(file("a.aiff"))));
        return decoder.totalFrames();
    };
    constexpr quint64 whole = quint64{1} << 32;
    EXPECT_EQ(framesOf(8, 0), 0u);
    EXPECT_EQ(framesOf(4, 0), (whole - 4) / 2);
    EXPECT_EQ(framesOf(0, 0), (whole - 8) / 2);
    EXPECT_EQ(framesOf(20, 12), 0u);
    EXPECT_EQ(framesOf(20, 14), (whole - 2) / 2);
    EXPECT_EQ(framesOf(8, 0xFFFFFFF0), 0x10u / 2);
    // On the way to the next chunk such a size leads out of the file.
    const QByteArray small = "SSND" + big(quint32{4}) + big(quint32{0}) + big(quint32{0});
    EXPECT_FALSE(decodeBytes(form(small + common(1, 16))).opened);
}

TEST_F(AiffDecoderTest, RatesOfEightyBits)
{
    EXPECT_EQ(rateOf("\x40\x0E\xAC\x44\0\0\0\0\0\0"), 44100u);
    EXPECT_EQ(rateOf("\x40\x0E\xBB\x80\0\0\0\0\0\0"), 48000u);
    EXPECT_EQ(rateOf("\x40\x10\xBB\x80\0\0\0\0\0\0"), 192000u);
    EXPECT_EQ(rateOf("\0\0\0\0\0\0\0\0\0\0"), 0u);
    // 1.5 and 1.25 with half a step added, then cut.
    EXPECT_EQ(rateOf("\x3F\xFF\xC0\0\0\0\0\0\0\0"), 2u);
    EXPECT_EQ(rateOf("\x3F\xFF\xA0\0\0\0\0\0\0\0"), 1u);
    EXPECT_EQ(rateOf("\x40\x1E\xFF\xFF\xFF\xFF\0\0\0\0"), 4294967295u);
}

TEST_F(AiffDecoderTest, RatesThat32BitsCannotHoldCountAsZero)
{
    EXPECT_EQ(rateOf("\x40\x1F\x80\0\0\0\0\0\0\0"), 0u);
    EXPECT_EQ(rateOf("\x40\x1E\xFF\xFF\xFF\xFF\xC0\0\0\0"), 0u);
    EXPECT_EQ(rateOf("\xC0\x0E\xAC\x44\0\0\0\0\0\0"), 0u);
    EXPECT_EQ(rateOf("\x7F\xFF\x80\0\0\0\0\0\0\0"), 0u);
    EXPECT_EQ(rateOf("\x7F\xFF\xC0\0\0\0\0\0\0\1"), 0u);
    EXPECT_EQ(rateOf("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), 0u);
}

TEST_F(AiffDecoderTest, NoSoundDataAndNoChannelsHaveNoFrames)
{
    for (const QByteArray& bytes : {form(common(2, 16) + sound({})), form(common(0, 16) + sound(data))}) {
        const Decoded decoded = decodeBytes(bytes);
        EXPECT_TRUE(decoded.opened);
        EXPECT_EQ(decoded.total, 0u);
        EXPECT_TRUE(decoded.blocks.isEmpty());
    }
}

TEST_F(AiffDecoderTest, SoundBeyondTheEndOfTheFileIsZeroes)
{
    const QByteArray cut = "SSND" + big(quint32{8 + 4 * 5000}) + QByteArray(8, '\0') + "\x12\x34";
    const Decoded decoded = decodeBytes(form(common(2, 16) + cut));
    EXPECT_EQ(decoded.total, 5000u);
    EXPECT_EQ(decoded.blocks, (QList<quint64>{4096, 904}));
    EXPECT_EQ(decoded.samples.first(), 0x12340000);
    EXPECT_EQ(decoded.samples.mid(1), QList<qint32>(9999, 0));
}

TEST_F(AiffDecoderTest, WrongMagicMissingChunksAndCompressedFormsAreRefused)
{
    const QByteArray good = form(common(1, 16) + sound(data));
    EXPECT_TRUE(decodeBytes(good).opened);
    EXPECT_FALSE(decodeBytes("form" + good.mid(4)).opened);
    EXPECT_FALSE(decodeBytes(good.left(8) + "AIFC" + good.mid(12)).opened);
    EXPECT_FALSE(decodeBytes(form(common(1, 16))).opened);
    EXPECT_FALSE(decodeBytes(form(sound(data))).opened);
    for (qsizetype length = 0; length < good.size() - data.size(); ++length)
        EXPECT_FALSE(decodeBytes(good.left(length)).opened) << length;
}

class AiffAgainstSoxTest : public EncoderTest, public ::testing::WithParamInterface<AudioFormat> {};

TEST_P(AiffAgainstSoxTest, AgreesBitForBit)
{
    const AudioFormat format = GetParam();
    const QList<qint32> samples = audiomaker::noise(5000u * format.channels, 8);
    writeAll(file("source.wav"), waveFile({format.sampleRate, format.channels, 32}, samples));
    const ToolResult made =
        runTool(QStringLiteral("sox"), {QStringLiteral("-D"), file("source.wav"), QStringLiteral("-b"),
                                        QString::number(format.bitsPerSample), file("made.aiff")});
    ASSERT_TRUE(made.ok()) << made.errors.toStdString();
    const Decoded decoded = decode(file("made.aiff"));
    EXPECT_EQ(decoded.format, format);
    EXPECT_EQ(decoded.total, 5000u);
    EXPECT_EQ(decoded.samples, decodeWithFfmpeg(file("made.aiff")));
}

INSTANTIATE_TEST_SUITE_P(Widths, AiffAgainstSoxTest, ::testing::ValuesIn(formatsOfWidths({16, 24, 32})),
                         nameOfFormat);

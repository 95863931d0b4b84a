#include "codecs/flac/FlacDecoder.h"

#include "codecs/DecoderFiles.h"
#include "support/AudioMaker.h"
#include "support/Tool.h"

class FlacDecoderTest : public EncoderTest {
protected:
    QByteArray encoded(const AudioFormat& format, quint64 frames, const QStringList& options = {})
    {
        const QList<qint32> samples = audiomaker::noise(frames * format.channels, 3);
        writeAll(file("s.wav"), waveFile(format, samples));
        const ToolResult made = runTool(
            QStringLiteral("flac"), QStringList{QStringLiteral("-sf")} + options
                                        + QStringList{QStringLiteral("-o"), file("s.flac"), file("s.wav")});
        EXPECT_TRUE(made.ok()) << made.errors.toStdString();
        return readAll(file("s.flac"));
    }

    Decoded decodeBytes(const QByteArray& bytes) const
    {
        writeAll(file("a.flac"), bytes);
        return decodeWith<FlacDecoder>(file("a.flac"));
    }

    // "fLaC", the block's header, then block and frame sizes, and then 20 bits of
    // rate, 3 of channels, 5 of width, 36 of length.
    static constexpr qsizetype rateOffset = 4 + 4 + 10;
};

TEST_F(FlacDecoderTest, FiveThousandFramesMakeTwoBlocks)
{
    const Decoded decoded = decodeBytes(encoded({44100, 2, 16}, 5000));
    EXPECT_EQ(decoded.blocks, (QList<quint64>{4096, 904}));
    EXPECT_EQ(decoded.total, 5000u);
}

TEST_F(FlacDecoderTest, EveryBlockSizeOfTheFileMakesTheSameBlocks)
{
    const Decoded usual = decodeBytes(encoded({44100, 2, 16}, 20000));
    for (const char* size : {"16", "576", "4095", "16384", "65535"}) {
        const QStringList options{QStringLiteral("--lax"), QStringLiteral("-b"), QString::fromLatin1(size)};
        const Decoded decoded = decodeBytes(encoded({44100, 2, 16}, 20000, options));
        EXPECT_EQ(decoded.samples, usual.samples) << size;
        EXPECT_EQ(decoded.blocks, usual.blocks) << size;
    }
}

TEST_F(FlacDecoderTest, AnUnstatedLengthIsATotalOfZeroAndPlaysToItsEnd)
{
    QByteArray bytes = encoded({44100, 2, 16}, 5000);
    const Decoded stated = decodeBytes(bytes);
    bytes[rateOffset + 3] = static_cast<char>(bytes[rateOffset + 3] & 0xF0);
    bytes.replace(rateOffset + 4, 4, QByteArray(4, '\0'));
    const Decoded unstated = decodeBytes(bytes);
    EXPECT_EQ(unstated.total, 0u);
    EXPECT_EQ(unstated.samples, stated.samples);
}

TEST_F(FlacDecoderTest, ContentWithoutFlacInItIsRefused)
{
    EXPECT_FALSE(decodeBytes("no audio at all").opened);
    EXPECT_FALSE(decodeBytes(QByteArray(100000, '\0')).opened);
    // Frames without their header: the library goes on to look for frames.
    const QByteArray whole = encoded({44100, 2, 16}, 5000);
    const qsizetype firstFrame = whole.indexOf("\xFF\xF8");
    ASSERT_GT(firstFrame, 0);
    EXPECT_FALSE(decodeBytes(whole.mid(firstFrame)).opened);
    EXPECT_FALSE(decodeBytes("fLaC").opened);
}

TEST_F(FlacDecoderTest, AFrameWithAnotherChannelCountEndsTheStream)
{
    for (const quint16 channels : {quint16{1}, quint16{6}}) {
        const QByteArray stereo = encoded({44100, 2, 16}, 6000, {QStringLiteral("--no-padding")});
        const Decoded alone = decodeBytes(stereo);
        const QByteArray other = encoded({44100, channels, 16}, 6000, {QStringLiteral("--no-padding")});
        const Decoded joined = decodeBytes(stereo + other.mid(other.indexOf("\xFF\xF8")));
        EXPECT_EQ(joined.format.channels, 2);
        EXPECT_EQ(joined.samples.mid(0, alone.samples.size()), alone.samples);
        EXPECT_EQ(joined.frames(), alone.frames()) << channels;
    }
}

TEST_F(FlacDecoderTest, FramesOfAnotherChannelCountThanTheHeaderNamesAreNotDelivered)
{
    QByteArray bytes = encoded({44100, 2, 16}, 6000);
    for (const int channels : {1, 3, 8}) {
        bytes[rateOffset + 2] = static_cast<char>((bytes[rateOffset + 2] & 0xF1) | (channels - 1) << 1);
        const Decoded decoded = decodeBytes(bytes);
        EXPECT_EQ(decoded.format.channels, channels);
        EXPECT_TRUE(decoded.blocks.isEmpty());
    }
}

TEST_F(FlacDecoderTest, ATruncatedFileEndsEarly)
{
    const QByteArray whole = encoded({44100, 2, 16}, 40000);
    const Decoded all = decodeBytes(whole);
    const Decoded half = decodeBytes(whole.left(whole.size() / 2));
    EXPECT_EQ(half.total, 40000u);
    EXPECT_GT(half.frames(), 10000u);
    EXPECT_LT(half.frames(), 40000u);
    EXPECT_EQ(half.samples, all.samples.mid(0, half.samples.size()));
}

// What stands in its place, and whether the next frame goes too while the library looks
// for where it is, differs from version to version.
TEST_F(FlacDecoderTest, ADamagedFrameCostsNoMoreThanItselfAndTheNext)
{
    constexpr qsizetype frames = 40000;
    constexpr qsizetype blockFrames = 4096;
    const QByteArray whole = encoded({44100, 2, 16}, frames, {QStringLiteral("--no-padding")});
    const Decoded all = decodeBytes(whole);
    QByteArray bytes = whole;
    // Noise takes the same room anywhere: this is the middle of the fifth frame.
    const qsizetype place = bytes.size() * 9 * blockFrames / 2 / frames;
    bytes[place] = static_cast<char>(bytes[place] ^ 0x55);
    const Decoded damaged = decodeBytes(bytes);
    EXPECT_NE(damaged.samples, all.samples);
    EXPECT_LE(damaged.frames(), all.frames());
    EXPECT_GE(damaged.frames(), all.frames() - 2 * blockFrames);
    EXPECT_EQ(damaged.samples.first(2 * 4 * blockFrames), all.samples.first(2 * 4 * blockFrames));
    const qsizetype behind = 2 * (frames - 6 * blockFrames);
    EXPECT_EQ(damaged.samples.last(behind), all.samples.last(behind));
}

TEST_F(FlacDecoderTest, TagsAndPicturesAreNoConcern)
{
    const QByteArray plain = encoded({44100, 2, 16}, 5000);
    const Decoded decoded = decodeBytes(plain);
    ASSERT_TRUE(
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--set-tag=TITLE=x"), file("a.flac")}).ok());
    EXPECT_EQ(decode(file("a.flac")).samples, decoded.samples);
}

class FlacWidthTest : public EncoderTest, public ::testing::WithParamInterface<AudioFormat> {};

TEST_P(FlacWidthTest, SamplesAreLeftJustifiedAndAgreeWithIndependentDecoders)
{
    const AudioFormat format = GetParam();
    const QList<qint32> samples = audiomaker::noise(7000u * format.channels, 9);
    decoderfiles::encode(file("a.flac"), format, samples);
    const Decoded decoded = decode(file("a.flac"));
    EXPECT_EQ(decoded.format, format);
    EXPECT_EQ(decoded.total, 7000u);
    EXPECT_EQ(decoded.samples, keepBits(samples, format.bitsPerSample));
    ASSERT_TRUE(runTool(QStringLiteral("flac"),
                        {QStringLiteral("-sdf"), QStringLiteral("-o"), file("judge.wav"), file("a.flac")})
                    .ok());
    EXPECT_EQ(decoded.samples, decodeWithFfmpeg(file("judge.wav")));
}

INSTANTIATE_TEST_SUITE_P(Widths, FlacWidthTest, ::testing::ValuesIn(formatsOfWidths({8, 12, 16, 20, 24, 32})),
                         nameOfFormat);

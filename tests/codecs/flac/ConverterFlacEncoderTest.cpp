#include "codecs/EncoderOptions.h"
#include "codecs/EncoderRun.h"
#include "support/AudioMaker.h"
#include "support/OpenFiles.h"
#include "support/Tool.h"

#include <QFile>

class ConverterFlacEncoderTest : public EncoderTest {
protected:
    ~ConverterFlacEncoderTest() override { encoderOptions = EncoderOptions(); }

    QByteArray flac(const AudioFormat& format, const QList<qint32>& samples)
    {
        return encode(FlacEncoderId, file("track.flac"), format, samples);
    }

    // What the reference decoder makes of the file, low byte first.
    QByteArray decoded()
    {
        const auto test = runTool("flac", {"-t", "-s", file("track.flac")});
        EXPECT_TRUE(test.ok()) << test.errors.toStdString();
        const auto tool = runTool("flac", {"-d", "-s", "-f", "--force-raw-format", "--endian=little",
                                           "--sign=signed", "-o", file("decoded.raw"), file("track.flac")});
        EXPECT_TRUE(tool.ok()) << tool.errors.toStdString();
        return readAll(file("decoded.raw"));
    }

    QByteArray shown(const char* what)
    {
        return runTool("metaflac", {QString::fromLatin1(what), file("track.flac")}).output.trimmed();
    }

    QByteArray bytesAtLevel(qint32 level)
    {
        encoderOptions.flacCompressionLevel = level;
        return flac({44100, 2, 16}, audiomaker::sine(60000, 2, 440, 44100));
    }
};

TEST_F(ConverterFlacEncoderTest, SixteenBitsComeBackUnchanged)
{
    const QList<qint32> samples = audiomaker::noise(2 * 50001, 40);
    flac({44100, 2, 16}, samples);
    EXPECT_EQ(decoded(), littleEndian(samples, 16));
    EXPECT_EQ(shown("--show-bps"), "16");
    EXPECT_EQ(shown("--show-sample-rate"), "44100");
    EXPECT_EQ(shown("--show-channels"), "2");
    EXPECT_EQ(shown("--show-total-samples"), "50001");
    EXPECT_NE(shown("--show-md5sum"), QByteArray(32, '0'));
}

TEST_F(ConverterFlacEncoderTest, TwentyFourBitsComeBackUnchanged)
{
    const QList<qint32> samples = audiomaker::noise(3 * 9001, 41);
    flac({96000, 3, 24}, samples);
    EXPECT_EQ(decoded(), littleEndian(samples, 24));
    EXPECT_EQ(shown("--show-bps"), "24");
}

TEST_F(ConverterFlacEncoderTest, ThirtyTwoBitsLoseTheirLowEight)
{
    const QList<qint32> samples{0x7FFFFFFF, -1, 0x000001FF, -257, qint32(0x80000000), 0xFF};
    flac({44100, 1, 32}, samples);
    EXPECT_EQ(shown("--show-bps"), "24");
    EXPECT_EQ(decoded(), QByteArray::fromHex("FFFF7F FFFFFF 010000 FEFFFF 000080 000000"));
}

TEST_F(ConverterFlacEncoderTest, TwentyBitsKeepTheirValuesInTwentyFour)
{
    // 20-bit values 1, -1, 524287 and -524288, shifted left by 12; at 24 bits
    // they stand at 16 times their value.
    flac({44100, 1, 20}, {1 << 12, -(1 << 12), 524287 * 4096, -524288 * 4096});
    EXPECT_EQ(shown("--show-bps"), "24");
    EXPECT_EQ(decoded(), QByteArray::fromHex("100000 F0FFFF F0FF7F 000080"));
}

TEST_F(ConverterFlacEncoderTest, EightBitsAreWrittenAtTwentyFour)
{
    flac({44100, 1, 8}, {0x7F000000, -0x01000000});
    EXPECT_EQ(shown("--show-bps"), "24");
    EXPECT_EQ(decoded(), QByteArray::fromHex("00007F 0000FF"));
}

TEST_F(ConverterFlacEncoderTest, LevelsOutsideTheRangeAreClamped)
{
    const QByteArray lowest = bytesAtLevel(0);
    const QByteArray highest = bytesAtLevel(8);
    EXPECT_NE(lowest, highest);
    EXPECT_EQ(bytesAtLevel(-1), lowest);
    EXPECT_EQ(bytesAtLevel(9), highest);
    EXPECT_EQ(bytesAtLevel(2147483647), highest);
    EXPECT_EQ(bytesAtLevel(-2147483647), lowest);
}

TEST_F(ConverterFlacEncoderTest, AudioIsThatOfTheReferenceEncoderAtLevelFive)
{
    const QList<qint32> samples = audiomaker::sine(100000, 2, 997, 44100);
    flac({44100, 2, 16}, samples);
    QFile raw(file("source.raw"));
    ASSERT_TRUE(raw.open(QIODevice::WriteOnly));
    raw.write(littleEndian(samples, 16));
    raw.close();
    const auto tool =
        runTool("flac", {"-5", "-s", "-f", "--no-padding", "--no-seektable", "--force-raw-format",
                         "--endian=little", "--sign=signed", "--channels=2", "--bps=16",
                         "--sample-rate=44100", "-o", file("reference.flac"), file("source.raw")});
    ASSERT_TRUE(tool.ok()) << tool.errors.toStdString();

    // From the first frame on the two files agree; what stands before are the
    // metadata blocks.
    const auto frames = [](const QByteArray& bytes) {
        return bytes.mid(bytes.indexOf(QByteArray::fromHex("FFF8"), 42));
    };
    const QByteArray reference = frames(readAll(file("reference.flac")));
    ASSERT_GT(reference.size(), 10000);
    EXPECT_EQ(frames(readAll(file("track.flac"))), reference);
}

TEST_F(ConverterFlacEncoderTest, NineChannelsAreRefusedAndTheFileIsLetGo)
{
    const auto before = openFileCount();
    const auto encoder = makeEncoder(FlacEncoderId);
    EXPECT_FALSE(encoder->open(toPath(file("nine.flac")), {44100, 9, 16}));
    EXPECT_EQ(openFileCount(), before);
    EXPECT_FALSE(encoder->close());
    EXPECT_FALSE(QFile::exists(file("nine.flac")));
    EXPECT_TRUE(encoder->open(toPath(file("eight.flac")), {44100, 8, 16}));
    EXPECT_TRUE(encoder->close());
}

TEST_F(ConverterFlacEncoderTest, ARefusedFormatLeavesAFileThatStoodThereAsItWas)
{
    for (const AudioFormat& format :
         {AudioFormat{44100, 9, 16}, {44100, 0, 16}, {0, 2, 16}, {705600, 2, 24}}) {
        QFile standing(file("standing.flac"));
        ASSERT_TRUE(standing.open(QIODevice::WriteOnly));
        standing.write("kept");
        standing.close();
        EXPECT_FALSE(makeEncoder(FlacEncoderId)->open(toPath(file("standing.flac")), format));
        EXPECT_EQ(readAll(file("standing.flac")), "kept") << format.channels << " " << format.sampleRate;
    }
}

TEST_F(ConverterFlacEncoderTest, FramesCountWhenTheSampleListIsLonger)
{
    const auto encoder = makeEncoder(FlacEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("track.flac")), {44100, 2, 16}));
    ASSERT_TRUE(encoder->write({{0x10000, 0x20000, 0x30000, 0x40000}, 1}));
    ASSERT_TRUE(encoder->close());
    EXPECT_EQ(decoded(), QByteArray::fromHex("0100 0200"));
}

TEST_F(ConverterFlacEncoderTest, DestructionFinishesTheFile)
{
    auto encoder = makeEncoder(FlacEncoderId);
    ASSERT_TRUE(encoder->open(toPath(file("track.flac")), {44100, 1, 16}));
    ASSERT_TRUE(encoder->write(makeBlock({0x10000, 0x20000}, 1)));
    encoder.reset();
    EXPECT_EQ(decoded(), QByteArray::fromHex("0100 0200"));
}
